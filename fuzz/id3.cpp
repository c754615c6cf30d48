// ID3v2 tags: their header and frames, wherever in a file they begin.
#include "Require.h"
#include "audio/decode/InputFile.h"
#include "media/tags/Id3Reader.h"

using quorel::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const quorel::fuzz::MemoryFile memory(data, size);
    std::string error;
    const auto file = quorel::InputFile::open(memory.path(), error);
    require(file.has_value(), "the file opens");
    for (const int64_t begin : {int64_t{0}, int64_t{20}}) { // behind the heads of WAV and AIFF
        for (const quorel::Id3Item& item : quorel::readId3Tag(*file, begin, file->size())) {
            require(!item.values.isEmpty(), "an item has a value");
            require(item.id.size() == 4, "a frame's name has four letters");
        }
    }
    return 0;
}
