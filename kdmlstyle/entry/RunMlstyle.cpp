#include "entry/CommandBodies.h"

namespace kdml {

void runMlstyle()
{
}

}  // namespace kdml
