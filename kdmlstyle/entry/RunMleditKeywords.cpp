#include "entry/CommandBodies.h"

namespace kdml {

void runMleditKeywords()
{
}

}  // namespace kdml
