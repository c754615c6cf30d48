#pragma once

#include <QByteArray>

namespace quorel {

/// A small file that is there while something is tried that might end the program: found at the
/// next start, it tells that it did. Each call waits for the disk; failures count as no mark.
class CrashMark {
  public:
    /// Bytes of a path; the folder has to exist.
    explicit CrashMark(QByteArray path)
        : path_(std::move(path)) {}

    bool isSet() const;
    void set() const;
    void clear() const;

  private:
    QByteArray path_;
};

} // namespace quorel
