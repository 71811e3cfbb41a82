#pragma once

namespace dbif {
/// Makes a `QCoreApplication` when the process has no application object: Qt loads its SQL drivers
/// only where there is one. It is never destroyed, so that it may be made in any thread.
void make_application_if_missing();
} // namespace dbif
