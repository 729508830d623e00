#include "frontends/qt/WindowDrop.h"

#include "frontends/qt/WindowNames.h"

#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace frontend {

QString draggedFolder(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    const QString path = urls.size() == 1 ? urls.constFirst().toLocalFile() : QString();
    const QFileInfo info(path);
    // Remove a slash at the end, which would make it a different folder in a settings file.
    return !path.isEmpty() && info.isDir() ? QDir::cleanPath(info.absoluteFilePath()) : QString();
}

WindowDrop::WindowDrop(NSTabView& tabs, QMainWindow& window, WindowActions& actions)
    : QObject(&window), tabs_(tabs), actions_(actions) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool WindowDrop::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) {
        return QObject::eventFilter(watched, event);
    }
    auto* drop = static_cast<QDropEvent*>(event);
    const QString folder = draggedFolder(*drop->mimeData());
    if (folder.isEmpty() || tabs_.indexOfSelectedTabViewItem() != sharesPage) {
        drop->ignore();
        return true;
    }
    // Nothing is moved.
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (type == QEvent::Drop) {
        const std::string path = folder.toStdString();
        actions_.beginWith(shareTable,
                           {{"shareName", QFileInfo(folder).fileName().toStdString()}, {"directory", path}});
    }
    return true;
}

} // namespace frontend
