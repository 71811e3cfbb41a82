#include "tools/dbapi/command_line.h"

int main(int argumentCount, char** arguments)
{
    return dbapi::tool::run_command_line(argumentCount, arguments);
}
