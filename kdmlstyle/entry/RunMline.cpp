#include "entry/CommandBodies.h"

namespace kdml {

void runMline()
{
}

}  // namespace kdml
