// The viewer's dark theme: dark surfaces keep the eye on the pictures.
#pragma once

class QApplication;

namespace DarkTheme {

void Apply(QApplication& application);

} // namespace DarkTheme
