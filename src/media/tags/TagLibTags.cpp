#include "media/tags/TagLibTags.h"

#include "audio/decode/Bytes.h"
#include "media/tags/TagLibStream.h"

#include <taglib/flacfile.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mp4file.h>
#include <taglib/mpegfile.h>
#include <taglib/tdebuglistener.h>
#include <taglib/xiphcomment.h>

#include <mutex>

namespace quorel {

namespace {

// Nobody wants to hear of damaged files on standard error.
class SilentListener final : public TagLib::DebugListener {
  public:
    void printMessage(const TagLib::String&) override {}
};

// TagLib has one listener for the whole program.
void silenceTagLib() {
    static SilentListener silent;
    static std::once_flag once;
    std::call_once(once, [] { TagLib::setDebugListener(&silent); });
}

std::optional<QString> textOf(const TagLib::String& text) {
    return text.isEmpty() ? std::nullopt : std::optional(QString::fromStdString(text.to8Bit(true)));
}

CommonTags tagsOf(const TagLib::Tag* tag) {
    return tag == nullptr
               ? CommonTags()
               : CommonTags{textOf(tag->title()), textOf(tag->artist()), textOf(tag->album())};
}

} // namespace

CommonTags readTagLibTags(const InputFile& file, int64_t begin, std::span<const std::byte> head) {
    silenceTagLib();
    const bool flac = startsWith(head, "fLaC");
    const bool mp4 = head.size() >= 8 && startsWith(head.subspan(4), "ftyp");
    // TagLib looks for the first frame of MPEG audio before all else, slowly: nowhere to be found
    // in a file of another kind. The others may hold large pictures.
    TagLibStream stream(file, begin, flac || mp4 ? 64 << 20 : 1 << 20);
    auto* frames = TagLib::ID3v2::FrameFactory::instance();
    if (flac) {
        TagLib::FLAC::File tagged(&stream, frames, false);
        return tagsOf(tagged.hasXiphComment() ? tagged.xiphComment() : tagged.tag());
    }
    if (mp4) {
        const TagLib::MP4::File tagged(&stream, false);
        return tagsOf(tagged.tag());
    }
    const TagLib::MPEG::File tagged(&stream, frames, false);
    return tagsOf(tagged.tag());
}

} // namespace quorel
