#include "player/MetadataLoader.h"

#include "media/tags/MetadataReader.h"
#include "model/Path.h"
#include "player/MetadataFold.h"
#include "storage/Files.h"

namespace quorel {

namespace {

TrackMetadata readFileOf(const MetadataScan::File& file) {
    return withEstimatedBitrate(MetadataReader::read(file.path),
                                [&file] { return fileSize(pathToBytes(file.path)); });
}

} // namespace

void MetadataLoader::load() {
    scan_.request(tabs_);
    events_.progressed();
    proceed();
}

void MetadataLoader::cancel() {
    scan_.cancel();
    proceed();
}

void MetadataLoader::proceed() {
    while (tasks_ < kTasks && postTask()) {
    }
    if (!scan_.isBatchReady() || !events_.mayApply())
        return;
    const MetadataScan::Applied applied = scan_.apply(tabs_);
    events_.applied(applied);
    if (applied.scanEnded && scan_.isRunning())
        proceed(); // the scan asked for meanwhile
}

bool MetadataLoader::postTask() {
    std::vector<MetadataScan::File> files;
    while (files.size() < kFilesATask) {
        auto file = scan_.next(tabs_);
        if (!file)
            break;
        files.push_back(*std::move(file));
    }
    if (files.empty())
        return false;
    ++tasks_;
    using Readings = std::vector<std::pair<MetadataScan::File, TrackMetadata>>;
    queue_.post(
        SerialQueue::Priority::Ordinary,
        [files = std::move(files)](const std::stop_token&) {
            Readings readings;
            readings.reserve(files.size());
            for (const MetadataScan::File& file : files)
                readings.emplace_back(file, readFileOf(file));
            return readings;
        },
        [this](Readings&& readings) {
            --tasks_;
            for (auto& [file, metadata] : readings)
                scan_.read(file, std::move(metadata));
            events_.progressed();
            proceed();
        });
    return true;
}

} // namespace quorel
