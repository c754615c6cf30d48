#pragma once

#include <QByteArray>
#include <QSet>
#include <functional>
#include <stop_token>
#include <utility>
#include <vector>

namespace quorel {

/// Finds the regular files below folders. A folder's entries come in the order of their bytes, so
/// that what is found does not depend on how the disk happens to list them. Symbolic links to
/// folders are kept for the end: a folder that can be reached without one is found by that path.
class FolderWalk {
  public:
    struct Actions {
        std::function<bool(const QByteArray& name)> isWanted; ///< asked before a file is looked at
        std::function<void(const QByteArray& path)> found;
        std::function<void()> afterFolder;
        std::stop_token stop;
    };

    explicit FolderWalk(Actions actions);

    /// Walks the folder of that absolute path, which may be a link itself; anything else is none.
    void enter(const QByteArray& folder);

    /// Walks the folders behind the links met so far and those they lead to, each once.
    void followLinks();

  private:
    enum class Kind { Folder, File, LinkToFolder, Other };
    using Folders = QSet<std::pair<quint64, quint64>>; ///< by device and file number
    struct Entry {
        QByteArray name;
        Kind kind;
    };

    void walk(const QByteArray& root, Folders& passedOver);
    std::vector<Entry> list(const QByteArray& folder, Folders& passedOver) const;
    Kind kindOf(int folder, const char* name, unsigned char type) const;

    Actions actions_;
    Folders entered_;
    std::vector<QByteArray> links_; ///< to folders, still to be followed
};

} // namespace quorel
