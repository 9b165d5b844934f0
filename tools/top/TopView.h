// How the phone's state is laid out.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

class Canvas;
class PhoneState;

/// Lays @p state out on @p canvas: in two columns where it is wide enough, and one line where it is too small.
void layOut(const PhoneState& state, Canvas& canvas);

/// The state as lines of text, printable characters only.
QString stateText(const PhoneState& state);

} // namespace zyn::tool
