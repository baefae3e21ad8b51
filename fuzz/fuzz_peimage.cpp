// Any bytes through the PE reader: a parse either refuses them with a reason or gives an image
// whose every resource can be read in full and whose string lookups stay inside their blocks.
#include "platform/host/peimage.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace host::detail;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string error;
    auto image = PeImage::Parse(std::vector<uint8_t>(data, data + size), &error);
    if (!image) {
        if (error.empty()) {
            std::abort(); // every refusal says why
        }
        return 0;
    }
    unsigned sum = 0;
    for (const ResourceEntry& entry : image->Resources()) {
        for (uint32_t i = 0; i < entry.size; ++i) {
            sum += entry.data[i];
        }
        const ResourceEntry* found = nullptr;
        if (image->Find(entry.type, entry.name, entry.language, &found) != ResourceLookup::Found ||
            !found) {
            std::abort(); // what the tree lists must be found again
        }
    }
    for (uint32_t id = 0; id < 64; ++id) {
        const char16_t* text = nullptr;
        uint16_t length = 0;
        if (image->FindString(id, &text, &length) == StringLookup::Found) {
            for (uint16_t i = 0; i < length; ++i) {
                sum += text[i];
            }
        }
    }
    volatile unsigned sink = sum;
    (void)sink;
    return 0;
}
