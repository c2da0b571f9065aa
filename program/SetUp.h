// What has to be in place before the first window is shown.
#pragma once

namespace ui {
class Application;
}

namespace dw {

/// Puts everything in place that the forms rely on: message boxes and notices, the end of the program, the
/// windows that look for data, how data controls open their files, the Help key, and what the main menu can
/// open.
void SetUpProgram(ui::Application& application);

}  // namespace dw
