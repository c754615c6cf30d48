#pragma once

#include "storage/Descriptor.h"

#include <QByteArray>

namespace quorel {

/// A file written beside another (or beside nothing) that takes its place once it is whole and on
/// the disk. Whatever fails or breaks off before leaves the old one as it was; a kill or a loss of
/// power may leave the unfinished one (removeUnfinished). Where the path is a symbolic link, the
/// file it leads to is replaced. Waits for the disk; one thread at a time.
class FileReplacement {
  public:
    enum class Access {
        UserOnly, ///< read and written by the user alone
        AsUsual,  ///< as the file replaced; as any new file where there is none
    };

    /// Bytes of a path; the folder has to exist.
    FileReplacement(const QByteArray& path, Access access);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// False from the first failure on.
    bool write(QByteArrayView bytes);

    /// Ends it: true once the new file is in place. To be called once.
    bool commit();

    /// Removes what replacements of files in that folder left unfinished. A replacement going on
    /// there will fail.
    static void removeUnfinished(const QByteArray& folder);

    /// Where a path leads when its last component is a symbolic link, followed to the end; the
    /// path itself where it is none.
    static QByteArray resolved(QByteArray path);

  private:
    QByteArray target_;
    QByteArray unfinished_; ///< its path; empty when there is none
    Descriptor file_;
    bool good_ = false;
    qint64 written_ = 0;
    qint64 flushing_ = 0; ///< how much of it the disk has been told to write
};

} // namespace quorel
