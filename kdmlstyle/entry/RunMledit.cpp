#include "entry/CommandBodies.h"

namespace kdml {

void runMledit()
{
}

}  // namespace kdml
