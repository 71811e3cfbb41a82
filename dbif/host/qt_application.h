#pragma once

namespace dbif {
/// Makes a `QCoreApplication` when the process has no application object: Qt loads its SQL drivers
/// only where there is one. It lives until the process ends, as Qt wants it.
void make_application_if_missing();
} // namespace dbif
