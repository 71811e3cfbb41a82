// A host with windows: interactive calls show their boxes once these are registered.
#include <dbui/message_boxes.h>
#include <dbui_dialogs/widget_message_boxes.h>

int main()
{
    dbui::register_message_boxes();
    return dbui::shows_boxes(true) ? 1 : 0; // there is no application yet
}
