#pragma once

namespace quorel {

/// Tells Qt how to describe every PanelButton and what pops up from it to assistive technologies.
/// May be called again.
void makeButtonsAccessible();

} // namespace quorel
