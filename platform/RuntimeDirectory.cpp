#include "platform/RuntimeDirectory.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace tvx {

std::string ensureRuntimeDirectory() {
  if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
    return qgetenv("XDG_RUNTIME_DIR").toStdString();
  const uid_t user = ::getuid();
  const QByteArray folder =
      QFile::encodeName(QDir::tempPath()) + "/tarvex-runtime-" + QByteArray::number(user);
  if (::mkdir(folder.constData(), 0700) != 0 && errno != EEXIST)
    return {};
  // The temporary folder is shared: only a real folder of this user will do, never a link.
  struct stat status {};
  if (::lstat(folder.constData(), &status) != 0 || !S_ISDIR(status.st_mode) ||
      status.st_uid != user)
    return {};
  if ((status.st_mode & 07777) != 0700 && ::chmod(folder.constData(), 0700) != 0)
    return {};
  qputenv("XDG_RUNTIME_DIR", folder);
  return folder.toStdString();
}

}  // namespace tvx
