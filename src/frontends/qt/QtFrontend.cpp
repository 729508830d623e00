#include "frontends/qt/QtFrontend.h"

#include "frontends/qt/Accessibility.h"
#include "frontends/qt/Binding.h"
#include "frontends/qt/KeyAccess.h"
#include "frontends/qt/PNGImage.h"
#include "frontends/qt/PlainStyle.h"
#include "frontends/qt/QtPresenter.h"
#include "frontends/qt/Snapshots.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSWindow.h"
#include "platform/foundation/NSBundle.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTimer>
#include <QTranslator>

#include <clocale>
#include <cstdlib>
#include <utility>

namespace frontend {

namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

/// Returns the menu entry's icon, for desktops that cannot match a window to its menu entry; none when it is
/// not installed.
QIcon windowIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48}) {
        const QString file = QString::fromStdString(NSBundle::mainBundle().resourcePath()) +
                             QStringLiteral("/../icons/hicolor/%1x%1/apps/brindle.png").arg(size);
        if (const QPixmap pixmap = pixmapFromPNG(file); !pixmap.isNull()) {
            icon.addPixmap(pixmap);
        }
    }
    return icon;
}

} // namespace

struct QtFrontend::Implementation {
    // Constructed before the application object, which picks its platform in its constructor.
    struct Platform {
        explicit Platform(Manner manner) {
            if (manner == Manner::Silent) {
                if (!displayIsThere()) {
                    qputenv("QT_QPA_PLATFORM", "offscreen");
                }
                // The offscreen platform warns about every window.
                QLoggingCategory::setFilterRules("default.warning=false");
            }
        }
    };

    Implementation(int& argc, char** argv, Manner manner)
        : platform(manner), application(argc, argv), presenter(std::make_shared<QtPresenter>(manner)) {
        // QApplication has taken over the user's locale. Files and tools write numbers and dates in none.
        std::setlocale(LC_NUMERIC, "C");
        std::setlocale(LC_TIME, "C");
        speakOneLanguage();
        usePlainStyle();
        QApplication::setApplicationName("Brindle");
        QApplication::setDesktopFileName("brindle");
        QApplication::setWindowIcon(windowIcon());
        QApplication::setQuitOnLastWindowClosed(false); // the application's delegate decides
    }

    ~Implementation() { presenter->closeAll(); }

    /// Makes Qt name keys and the buttons of its file dialog in the language of our texts. The environment's
    /// language alone is not enough, because we have fewer translations than Qt. Without Qt's own
    /// translations these texts are English.
    void speakOneLanguage() {
        const std::string language = NSBundle::mainBundle().languageCode();
        if (translator.load(QStringLiteral("qtbase_") + QString::fromStdString(language),
                            QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(&translator);
        }
    }

    Platform platform;
    QApplication application;
    QTranslator translator;
    Accessibility accessibility;
    KeyAccess keyAccess;
    std::shared_ptr<QtPresenter> presenter;
};

QtFrontend::QtFrontend(int& argc, char** argv, Manner manner)
    : implementation_(std::make_unique<Implementation>(argc, argv, manner)) {}

QtFrontend::~QtFrontend() = default;

void QtFrontend::showFailure(int& argc, char** argv, const std::string& text) {
    if (displayIsThere()) {
        const QApplication application(argc, argv);
        QMessageBox(QMessageBox::Critical, QStringLiteral("Brindle"), asItIs(shown(text)), QMessageBox::Close)
            .exec();
    }
}

std::shared_ptr<platform::Presenter> QtFrontend::presenter() const {
    return implementation_->presenter;
}

void QtFrontend::useReviewer(review::Reviewer& reviewer) {
    implementation_->presenter->useReviewer(reviewer);
}

void QtFrontend::useHistory(const review::History& history) {
    implementation_->presenter->useHistory(history);
}

void QtFrontend::useServer(ShareServer server) {
    implementation_->presenter->useServer(std::move(server));
}

void QtFrontend::useDoctor(accesscheck::ExaminedHost host) {
    implementation_->presenter->useDoctor(std::move(host));
}

void QtFrontend::useListener(
    int descriptor, std::function<void(const std::function<void(const std::string& token)>& raise)> answer) {
    auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read,
                                         &implementation_->application); // a child of the application object
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [this, answer = std::move(answer)] {
        answer([this](const std::string& token) { implementation_->presenter->bringToFront(token); });
    });
}

int QtFrontend::run(const std::function<void()>& launch) {
    QtPresenter& presenter = *implementation_->presenter;
    QTimer::singleShot(0, &implementation_->application, [&presenter, &launch] {
        presenter.queue().runUserEvent(launch);
        if (NSApp().isTerminated()) {
            QCoreApplication::quit();
        }
    });
    const int status = QApplication::exec();
    // When it was ended from outside (the session closes), the application must still terminate properly.
    NSApp().dispatch([] { NSApp().terminate(); });
    presenter.closeAll();
    return status;
}

platform::Status QtFrontend::takeSnapshots(const std::string& folder) {
    platform::Status status = writeSnapshots(*implementation_->presenter, folder);
    implementation_->presenter->closeAll();
    return status;
}

bool QtFrontend::displayIsThere() {
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

} // namespace frontend
