// The same geometry file using only the layers below it: the build accepts it.
#include "frame/Globals.hpp"
#include "geometry/TKVector4d.hpp"
