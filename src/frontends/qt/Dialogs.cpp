#include "frontends/qt/Dialogs.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/Inks.h"
#include "frontends/qt/LineEdit.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/foundation/NSBundle.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace frontend {

namespace {

constexpr int dialogWidth = 340;
constexpr int fileDialogWidth = 800;
constexpr int fileDialogHeight = 480;

bool changesNothing(const std::string& button) {
    return button == NSLocalizedString("Cancel") || button == NSLocalizedString("No");
}

QLabel* wrapped(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

/// What stands in the field in sight that names a folder: where another one is looked for first.
QString folderNamedIn(const QWidget* window) {
    const auto fields = window == nullptr ? QList<LineEdit*>() : window->findChildren<LineEdit*>();
    const auto found = std::ranges::find_if(
        fields, [](const LineEdit* each) { return each->isVisible() && each->namesFolder(); });
    return found == fields.end() ? QString() : (*found)->text();
}

/// Returns the field's text and clears the field. Intermediate copies are overwritten.
std::string takePassword(QLineEdit& field) {
    QString text = field.text();
    field.clear(); // now `text` alone holds the characters, and fill() overwrites them in place
    QByteArray bytes = text.toUtf8();
    std::string password(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    text.fill(QChar());
    bytes.fill('\0');
    return password;
}

} // namespace

bool isInformation(const platform::Alert& alert) {
    return alert.title == NSLocalizedString("Donation") ||
           alert.title == NSLocalizedString("Your Software is up-to-date") ||
           alert.title == NSLocalizedString("A New Version is Available") ||
           alert.title == NSLocalizedString("Shares Updated for Jaguar") ||
           alert.title == NSLocalizedString("What Would This Do?");
}

platform::AlertAnswer harmlessAnswer(const platform::Alert& alert) {
    using platform::AlertAnswer;
    if (alert.alternateButton && changesNothing(*alert.alternateButton)) {
        return AlertAnswer::Alternate;
    }
    if (alert.otherButton && changesNothing(*alert.otherButton)) {
        return AlertAnswer::Other;
    }
    if (changesNothing(alert.defaultButton) || !alert.alternateButton) {
        return AlertAnswer::Default;
    }
    return AlertAnswer::Alternate;
}

platform::AlertAnswer askAlert(const platform::Alert& alert, QWidget* parent) {
    using platform::AlertAnswer;
    QMessageBox box(parent);
    box.setObjectName("alert");
    constexpr int markSize = 40;
    box.setIconPixmap(markIcon(isInformation(alert) ? Mark::Information : Mark::Warning, QPalette::Window)
                          .pixmap(markSize));
    box.setWindowTitle(shown(alert.title));
    box.setText(asItIs(shown(alert.title), "bold"));
    box.setInformativeText(asItIs(shown(alert.message)));
    if (QWidget* message = box.findChild<QWidget*>("qt_msgbox_informativelabel")) {
        message->setMinimumWidth(dialogWidth); // otherwise long messages get a narrow column
    }
    const AlertAnswer harmless = harmlessAnswer(alert);
    std::vector<std::pair<QAbstractButton*, AlertAnswer>> buttons;
    const auto add = [&](const std::optional<std::string>& text, QMessageBox::ButtonRole role,
                         AlertAnswer answer) {
        if (!text) {
            return;
        }
        QPushButton* button = box.addButton(title(*text), role);
        buttons.emplace_back(button, answer);
        if (answer == AlertAnswer::Default) {
            box.setDefaultButton(button);
        }
        if (answer == harmless) {
            box.setEscapeButton(button);
        }
    };
    add(alert.defaultButton, QMessageBox::AcceptRole, AlertAnswer::Default);
    add(alert.alternateButton, QMessageBox::RejectRole, AlertAnswer::Alternate);
    add(alert.otherButton, QMessageBox::DestructiveRole, AlertAnswer::Other);
    box.exec();
    for (const auto& [button, answer] : buttons) {
        if (button == box.clickedButton()) {
            return answer;
        }
    }
    return harmless;
}

std::optional<std::string> askPath(const platform::OpenPanelRequest& request, QWidget* parent) {
    QFileDialog dialog(parent);
    const bool foldersOnly = request.canChooseDirectories && !request.canChooseFiles;
    dialog.setWindowTitle(localized(foldersOnly ? "Choose a Folder" : "Choose a File"));
    dialog.setFileMode(foldersOnly ? QFileDialog::Directory : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::ShowDirsOnly, foldersOnly);
    dialog.setLabelText(QFileDialog::Accept, localized("Choose"));
    const QString asked = shown(request.directory);
    if (const QString folder = asked.isEmpty() && foldersOnly ? folderNamedIn(parent) : asked;
        QDir::isAbsolutePath(folder) && QFileInfo(folder).isDir()) {
        dialog.setDirectory(folder);
    }
    dialog.resize(fittedToScreen(dialog, QSize(fileDialogWidth, fileDialogHeight)));
    if (!request.file.empty()) {
        dialog.selectFile(shown(request.file));
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return dialog.selectedFiles().constFirst().toStdString();
}

std::optional<platform::AdministratorAnswer> askAdministrator(const platform::AdministratorRequest& request,
                                                              QWidget* parent) {
    QDialog dialog(parent);
    dialog.setObjectName("administrator");
    dialog.setWindowTitle(localized("Allow Changes"));
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(12);
    auto* heading = wrapped(localized("Brindle wants to make changes."));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    heading->setMinimumWidth(dialogWidth);
    layout->addWidget(heading);
    layout->addWidget(
        wrapped(localized(request.needsPassword ? "Enter an administrator's password to allow this."
                                                : "Allow it to change the file sharing settings?")));
    auto* password = new QLineEdit;
    password->setEchoMode(QLineEdit::Password);
    if (request.needsPassword) {
        auto* form = new QFormLayout;
        form->addRow(localized("Password:"), password);
        layout->addLayout(form);
        password->setFocus();
    } else {
        password->setParent(&dialog);
        password->hide();
    }
    if (!request.message.empty()) {
        auto* message = wrapped(shown(request.message));
        useInk(*message, Ink::Warning);
        layout->addWidget(message);
    }
    auto* buttons = new QDialogButtonBox;
    auto* allow = buttons->addButton(localized("Allow"), QDialogButtonBox::AcceptRole);
    auto* refuse = buttons->addButton(localized("Refuse"), QDialogButtonBox::RejectRole);
    refuse->setAutoDefault(false);
    allow->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    layout->addWidget(buttons);
    const bool allowed = dialog.exec() == QDialog::Accepted;
    std::string typed = takePassword(*password);
    if (!allowed) {
        return std::nullopt;
    }
    return platform::AdministratorAnswer{std::move(typed)};
}

} // namespace frontend
