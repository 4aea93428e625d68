// The switch to counts that threads may share.
#include "Vorn/Memory.h"

namespace Vorn {

bool VFPtrInterface::threadSafePointers_ = false;
MemClass memClasses_[memClassNum];

} // namespace Vorn
