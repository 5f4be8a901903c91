#include "entry/CommandBodies.h"

#include "host/WorkingDatabase.h"
#include "mline/MlineCommand.h"

namespace kdml {

void runMline()
{
    CMLineCommand command(workingDatabase());
    command.run();
}

}  // namespace kdml
