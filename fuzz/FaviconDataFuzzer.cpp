// A decrypted favicon file's text, decoded over the defaults: see SealedRecordCheck.h.

#include "SealedRecordCheck.h"

#include "core/FaviconData.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    velder::fuzz::checkSealedRecord<velder::FaviconData>(data, size);
    return 0;
}
