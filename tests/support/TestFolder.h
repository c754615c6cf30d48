#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace quorel::test {

/// A folder of a test's own, gone with the object. Everything in it is named by bytes below it.
class TestFolder {
  public:
    TestFolder() { EXPECT_NE(::mkdtemp(folder_.data()), nullptr); }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_.toStdString(), ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    QByteArray path(const QByteArray& name = {}) const {
        return name.isEmpty() ? folder_ : folder_ + '/' + name;
    }

    /// What stands in it or in a folder below it.
    std::vector<std::string> names(const QByteArray& below = {}) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path(below).toStdString()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    /// Makes a file, and the folders it stands in; returns its path.
    QByteArray write(const QByteArray& name, const QByteArray& bytes = {}) const {
        for (qsizetype end = name.indexOf('/'); end >= 0; end = name.indexOf('/', end + 1))
            ::mkdir(path(name.left(end)).constData(), 0777);
        std::FILE* file = std::fopen(path(name).constData(), "wb");
        if (!file) {
            ADD_FAILURE() << "cannot write " << path(name).constData();
            return path(name);
        }
        std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), file);
        std::fclose(file);
        return path(name);
    }

    /// A symbolic link of that name to what `target` says, as seen from it.
    void link(const QByteArray& name, const QByteArray& target) const {
        EXPECT_EQ(::symlink(target.constData(), path(name).constData()), 0) << name.constData();
    }

  private:
    QByteArray folder_ = "/tmp/quorel-test-XXXXXX";
};

} // namespace quorel::test
