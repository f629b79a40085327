#pragma once

#include "Hosts/Pictures/Picture.h"

namespace Ombrique::Hosts {

/// Two pictures of one size, next to each other with an upright line between them, black and white, so that it shows on
/// any picture. `origin`, which describes one of them, describes the result afterwards: its data and display windows
/// are the whole.
World sideBySide(const World& left, const World& right, PictureOrigin& origin);

} // namespace Ombrique::Hosts
