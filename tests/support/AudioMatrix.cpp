#include "support/AudioMatrix.h"

#include "support/AudioFixtures.h"

#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

namespace quorel::test {

namespace {

MatrixFile parsed(const std::string& line, const std::string& folder) {
    static const std::map<std::string, MatrixFile::Check> kChecks{
        {"refused", MatrixFile::Check::Refused},
        {"length", MatrixFile::Check::Length},
        {"like", MatrixFile::Check::Like},
        {"exact", MatrixFile::Check::Exact},
    };
    std::istringstream columns(line);
    const auto next = [&] {
        std::string text;
        std::getline(columns, text, '\t');
        return text;
    };
    MatrixFile file;
    file.name = next();
    file.path = folder + "/" + file.name;
    const std::string frames = next();
    file.check = kChecks.at(next());
    file.lag = std::stoll(next());
    file.channels = std::stoi(next());
    file.sampleRate = std::stoi(next());
    file.source = folder + "/sources/" + next() + ".f32";
    if (file.check != MatrixFile::Check::Refused) {
        const std::size_t dots = frames.find("..");
        file.fewest = std::stoll(frames);
        file.most = dots == std::string::npos ? file.fewest : std::stoll(frames.substr(dots + 2));
    }
    return file;
}

} // namespace

std::vector<MatrixFile> matrixFiles(const std::string& folder, const std::string& prefix) {
    std::vector<MatrixFile> files;
    std::ifstream manifest(folder + "/manifest.tsv");
    for (std::string line; std::getline(manifest, line);)
        if (line.starts_with(prefix))
            files.push_back(parsed(line, folder));
    return files;
}

std::vector<float> readFloats(const std::string& path) {
    const std::string bytes = readFile(path);
    std::vector<float> floats(bytes.size() / sizeof(float));
    std::memcpy(floats.data(), bytes.data(), floats.size() * sizeof(float));
    return floats;
}

} // namespace quorel::test
