#include "Plugins/Shared/Math/Rect.h"

namespace Ombrique::GaussianBlur {

// Not inline: where a caller rounds two doubles to single precision for the arguments, GCC 12 takes the rounding and
// the widening here together for nothing and drops both.
Rect Rect::scale(float sx, float sy) { return expand(getSize() * Vec2(sx, sy) - getSize()); }

} // namespace Ombrique::GaussianBlur
