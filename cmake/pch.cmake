# One precompiled header for everything that links only QtCore, built once and
# reused by every such target so the 2-core build stays short.
add_library(trestle_pch_core STATIC ${PROJECT_SOURCE_DIR}/cmake/pch_core.cpp)
target_link_libraries(trestle_pch_core PUBLIC trestle_common Qt6::Core)
target_precompile_headers(trestle_pch_core PRIVATE
  <QtCore/QString> <QtCore/QStringList> <QtCore/QList> <QtCore/QHash>
  <QtCore/QMap> <QtCore/QObject> <QtCore/QDate> <QtCore/QDateTime>
  <QtCore/QDir> <QtCore/QFile> <QtCore/QFileInfo> <QtCore/QUuid>
  <algorithm> <optional> <vector> <functional>)

# Reuse the core precompiled header in a target.
function(trestle_use_core_pch target)
  target_precompile_headers(${target} REUSE_FROM trestle_pch_core)
endfunction()

if(TRESTLE_WIDGETS)
  # The same for the graphical layers, with the widget headers.
  add_library(trestle_pch_gui STATIC ${PROJECT_SOURCE_DIR}/cmake/pch_core.cpp)
  target_link_libraries(trestle_pch_gui PUBLIC trestle_common Qt6::Widgets)
  target_precompile_headers(trestle_pch_gui PRIVATE
    <QtCore/QString> <QtCore/QStringList> <QtCore/QList> <QtCore/QHash> <QtCore/QObject>
    <QtCore/QDate> <QtCore/QDir> <QtCore/QFile> <QtGui/QColor> <QtGui/QFont> <QtGui/QPainter>
    <QtGui/QTextDocument> <QtWidgets/QWidget> <QtWidgets/QLabel> <QtWidgets/QBoxLayout>
    <QtWidgets/QPushButton> <algorithm> <optional> <vector> <functional>)
  function(trestle_use_gui_pch target)
    target_precompile_headers(${target} REUSE_FROM trestle_pch_gui)
  endfunction()
endif()
