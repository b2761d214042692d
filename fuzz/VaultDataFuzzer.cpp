// A decrypted vault file's text, decoded over the defaults: see SealedRecordCheck.h.

#include "SealedRecordCheck.h"

#include "core/VaultData.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    velder::fuzz::checkSealedRecord<velder::VaultData>(data, size);
    return 0;
}
