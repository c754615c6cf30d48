#pragma once

namespace quorel {

/// Tells Qt how to describe every ValueSlider to assistive technologies. May be called again.
void makeSlidersAccessible();

} // namespace quorel
