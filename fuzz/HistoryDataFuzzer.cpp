// A decrypted history file's text, decoded over the defaults: see SealedRecordCheck.h.

#include "SealedRecordCheck.h"

#include "core/HistoryData.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    velder::fuzz::checkSealedRecord<velder::HistoryData>(data, size);
    return 0;
}
