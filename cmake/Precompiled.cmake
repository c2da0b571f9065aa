# Precompiled headers: what nearly every source includes from the standard library, GoogleTest and Qt is read once for
# all. Headers of our own are not among them, because each edit would rebuild the tree.
#
# Four targets make one each, and the others use it:
#   platform        the standard library
#   testsupport     the same and GoogleTest
#   desktop         the standard library and Qt's widgets
#   desktopsupport  the same and GoogleTest
#
# A source still includes what it uses. A build without precompiled headers (-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON)
# finds what is missing; tools/tidy-changes makes one of the changed files.
set(precompiled_standard
  <algorithm> <array> <charconv> <chrono> <cstdint> <cstdio> <cstdlib> <cstring> <deque> <filesystem> <fstream>
  <functional> <iostream> <map> <memory> <optional> <random> <set> <span> <sstream> <stdexcept> <string> <string_view>
  <system_error> <thread> <unordered_map> <utility> <vector>)
set(precompiled_widgets
  <QAbstractButton> <QApplication> <QCheckBox> <QComboBox> <QFile> <QGridLayout> <QGroupBox> <QHBoxLayout> <QHeaderView>
  <QImage> <QKeyEvent> <QLabel> <QLineEdit> <QListWidget> <QMenu> <QMessageBox> <QPainter> <QPixmap> <QPlainTextEdit>
  <QPointer> <QPushButton> <QRadioButton> <QRegularExpression> <QScrollArea> <QScrollBar> <QStatusBar> <QStyle>
  <QTableView> <QTabWidget> <QTimer> <QVBoxLayout> <QWidget>)
