#include "storage/CrashMark.h"

#include "storage/Descriptor.h"
#include "storage/Files.h"

#include <fcntl.h>
#include <unistd.h>

namespace quorel {

bool CrashMark::isSet() const {
    return isRegularFile(path_);
}

void CrashMark::set() const {
    const Descriptor file(::open(path_.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
}

void CrashMark::clear() const {
    ::unlink(path_.constData());
}

} // namespace quorel
