#include "frontends/qt/Buttons.h"

#include "frontends/qt/Mnemonics.h"
#include "frontends/qt/NodeAttributes.h"
#include "frontends/qt/PNGImage.h"
#include "platform/appkit/NSButton.h"
#include "platform/appkit/NSTableView.h"
#include "platform/appkit/NSTextField.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QPushButton>

namespace frontend {

namespace {

constexpr const char* keyProperty = "keyEquivalent";
constexpr const char* keysProperty = "hasKeys";
constexpr const char* modelProperty = "model";
constexpr int imageSize = 24;

/// Returns the button's image; a null icon when there is none or Qt cannot read it. The button then shows its
/// title. The images are TIFF, for which Qt needs a plug-in with seven libraries, so they are read from their
/// copies as PNG beside them.
QIcon iconOf(const NSButton& button) {
    if (!button.image()) {
        return {};
    }
    const QFileInfo image(shown(button.image()->path()));
    const QString copy = image.path() + QLatin1Char('/') + image.completeBaseName() + QLatin1String(".png");
    return QIcon(pixmapFromPNG(copy));
}

} // namespace

QAbstractButton* makeButton(const platform::InterfaceNode& node, WindowActions& actions,
                            RefreshQueue& queue) {
    NSButton& button = *modelOf<NSButton>(node);
    const bool withImage = isYes(node, "image");
    QAbstractButton* widget = nullptr;
    if (button.kind() == NSButtonKind::CheckBox) {
        widget = new QCheckBox;
    } else {
        auto* push = new QPushButton;
        push->setAutoDefault(
            false); // Return presses the button that the window names, not the one with the focus
        push->setDefault(button.keyEquivalent() == "\r");
        push->setFlat(withImage);
        widget = push;
    }
    if (withImage) {
        widget->setIconSize(QSize(imageSize, imageSize));
        widget->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    widget->setProperty(keyProperty, shown(button.keyEquivalent()));
    widget->setProperty(modelProperty, QVariant::fromValue<const void*>(&button));
    widget->setProperty(keysProperty, !node.attribute("role").empty());
    // While this notice is shown, the button would do harm, and is disabled.
    auto* notice = actions.find<NSTextField>(node.attribute("offWith"));
    // A button that edits a row needs a selected row.
    auto* table =
        node.attribute("role") == "edit" ? actions.find<NSTableView>(node.attribute("reverts")) : nullptr;
    auto* binding = new Binding(widget, queue, button.changed, [widget, &button, withImage, notice, table] {
        widget->setEnabled(button.isEnabled() && (notice == nullptr || notice->stringValue().empty()) &&
                           (table == nullptr || table->selectedRow() >= 0));
        setTitle(*widget, button.title());
        if (withImage) {
            widget->setIcon(iconOf(button));
        }
        if (button.kind() == NSButtonKind::CheckBox) {
            widget->setCheckable(true);
            widget->setChecked(button.state() == NSOnState);
        }
    });
    if (notice != nullptr) {
        new Binding(widget, queue, notice->changed, [binding] { binding->markDirty(); });
    }
    if (table != nullptr) {
        new Binding(widget, queue, table->changed, [binding] { binding->markDirty(); });
        new Binding(widget, queue, table->reloaded, [binding] { binding->markDirty(); });
    }
    QObject::connect(widget, &QAbstractButton::clicked, widget, [binding, &node, &actions] {
        binding->markDirty(); // Qt has already changed the check mark; the model may disagree
        actions.use(node);
    });
    return widget;
}

const NSButton* modelOfButton(const QAbstractButton& button) {
    return static_cast<const NSButton*>(button.property(modelProperty).value<const void*>());
}

bool hasKeys(const QWidget& button) {
    return button.property(keysProperty).toBool();
}

QString keyEquivalentOf(const QAbstractButton& button) {
    return button.property(keyProperty).toString();
}

Matrix::Matrix(NSMatrix& matrix, RefreshQueue& queue) : matrix_(matrix) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setColumnStretch(matrix.numberOfColumns(), 1);
    for (int row = 0; row < matrix.numberOfRows(); ++row) {
        for (int column = 0; column < matrix.numberOfColumns(); ++column) {
            auto* cell = new QCheckBox;
            layout->addWidget(cell, row, column);
            cells_.push_back(cell);
            connect(cell, &QCheckBox::clicked, this, [this, row, column, &queue] {
                queue.runUserEvent([this, row, column] { matrix_.performClickAt(row, column); });
                load();
            });
        }
    }
    if (!cells_.empty()) { // a label's mnemonic moves the focus to the first cell
        setFocusPolicy(Qt::TabFocus);
        setFocusProxy(cells_.front());
    }
    new Binding(this, queue, matrix.changed, [this] { load(); });
}

void Matrix::load() {
    setEnabled(matrix_.isEnabled());
    for (std::size_t index = 0; index < cells_.size(); ++index) {
        const int row = static_cast<int>(index) / matrix_.numberOfColumns();
        const int column = static_cast<int>(index) % matrix_.numberOfColumns();
        setTitle(*cells_[index], matrix_.titleAt(row, column));
        cells_[index]->setChecked(matrix_.stateAt(row, column) == NSOnState);
    }
}

} // namespace frontend
