// The runtime folder of a session that has none. Qt warns on stderr when XDG_RUNTIME_DIR is not
// set (a cron job, a container, a login without a session manager), which scripts that read the
// programs' output should not see; a private folder under the temporary folder takes its place.
#pragma once

#include <string>

namespace tvx {

// When XDG_RUNTIME_DIR is unset or empty: creates <temporary folder>/tarvex-runtime-<user id> with
// mode 0700 if it is missing, gives an existing one of ours that mode, and sets the variable to
// it. Call before the application object is made. Returns the folder the variable names
// afterwards; empty when it was unset and the folder cannot be had (a file or link of that name,
// or a folder of another user), in which case the variable stays unset.
std::string ensureRuntimeDirectory();

}  // namespace tvx
