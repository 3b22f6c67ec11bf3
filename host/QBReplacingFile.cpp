#include "QBReplacingFile.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "QBMessageCodes.h"

using quernbase::QBString;

namespace {

int statusOfErrno(int error) {
    return error == ENOENT || error == ENOTDIR ? qbmsg::FileNotFound : qbmsg::CannotOpenForWriting;
}

// A link is written through: the file it names is replaced, and the link stays.
QBString resolveLink(const QBString& path) {
    struct stat st;
    if (lstat(path.get(), &st) != 0 || !S_ISLNK(st.st_mode)) return path;
    char* real = realpath(path.get(), nullptr);
    if (!real) return path;
    QBString resolved(real);
    std::free(real);
    return resolved;
}

}  // namespace

int QBReplacingFile::open(const QBString& path) {
    abandon();
    if (path.isEmpty()) return qbmsg::InvalidArgument;
    target = resolveLink(path);
    int slash = target.rcpos('/');
    QBString folder = slash >= 0 ? target.sub(0, unsigned(slash) + 1) : QBString("");
    QBString name = slash >= 0 ? target.sub(unsigned(slash) + 1) : target;
    temporary = folder + "." + name + ".qbrefactor-XXXXXX";
    if (temporary.isNull()) return qbmsg::OutOfMemory;
    fd = mkstemp(temporary.get_nonconst());
    if (fd < 0) {
        int status = statusOfErrno(errno);
        temporary.makeNull();
        return status;
    }
    struct stat st;
    mode_t mode = 0666;
    if (stat(target.get(), &st) == 0) {
        mode = st.st_mode & 07777;
    } else {
        mode_t mask = umask(0);
        umask(mask);
        mode &= ~mask;
    }
    fchmod(fd, mode);
    return fd;
}

unsigned QBReplacingFile::write(const char* data, unsigned length) {
    if (fd < 0) return 0;
    unsigned done = 0;
    while (done < length) {
        ssize_t n = ::write(fd, data + done, length - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += unsigned(n);
    }
    return done;
}

int QBReplacingFile::close() {
    if (fd < 0) return qbmsg::InvalidArgument;
    bool ok = fsync(fd) == 0;
    ok = ::close(fd) == 0 && ok;
    fd = -1;
    if (ok) ok = rename(temporary.get(), target.get()) == 0;
    if (!ok) {
        unlink(temporary.get());
        temporary.makeNull();
        return qbmsg::CannotOpenForWriting;
    }
    temporary.makeNull();
    return 0;
}

void QBReplacingFile::abandon() {
    if (fd >= 0) {
        ::close(fd);
        fd = -1;
    }
    if (temporary.isNotEmpty()) unlink(temporary.get());
    temporary.makeNull();
}
