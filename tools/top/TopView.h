// The layout of the phone's state.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

class Canvas;
class PhoneState;

/// Draws @p state on @p canvas: in two columns if it is wide enough, as one line if it is too small.
void layOut(const PhoneState& state, Canvas& canvas);

/// The state as lines of printable text.
QString stateText(const PhoneState& state);

} // namespace zyn::tool
