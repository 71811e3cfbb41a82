#pragma once

namespace dbui {
/// Lets the interactive calls of `dbui` show Qt's message boxes, wherever there is a
/// `QApplication`. A host with windows links `dbapi::dbui_dialogs` and calls this once, in the
/// thread of its windows; interactive calls are made there only.
void register_message_boxes();
} // namespace dbui
