// A geometry file that reaches up into the scene layer: the build must refuse it.
#include "geometry/TKVector4d.hpp"
#include "scene/TKShape.hpp"
