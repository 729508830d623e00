#include "frontends/qt/ReviewDialog.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/DrawnIcons.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/foundation/NSBundle.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace frontend {

namespace {

constexpr int dialogWidth = 560;
constexpr int sideMargin = 20;
constexpr int scrollBarRoom = 20;
constexpr int markSize = 32;
constexpr int detailsHeight = 200;
constexpr int mostRowsHeight = 360;
constexpr int leastHeight = 80; // of each part, in pixels; it scrolls when it has less room

QLabel* paragraph(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    return label;
}

QLabel* heading(const QString& text) {
    QLabel* label = paragraph(text);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    return label;
}

/// Makes a list of sentences, each with a bullet or number. Names in them are shown verbatim.
QLabel* sentenceList(const std::vector<std::string>& sentences, const char* element) {
    QString html = QLatin1String("<style>li { margin-bottom: 4px; }</style><") + QLatin1String(element) +
                   QLatin1String(" style='margin: 0; -qt-list-indent: 1'>");
    for (const std::string& sentence : sentences) {
        html += QLatin1String("<li>") + breakable(shown(sentence)).toHtmlEscaped() + QLatin1String("</li>");
    }
    QLabel* list = paragraph(html + QLatin1String("</") + QLatin1String(element) + QLatin1Char('>'));
    list->setTextFormat(Qt::RichText);
    return list;
}

/// Returns the commands that a person would type, and the removed and added lines of smb.conf.
QString detailsOf(const review::Plan& plan) {
    QString text;
    for (const review::PlannedRun& run : plan.runs) {
        text += shown(review::runText(run.tool, run.arguments) + "\n");
    }
    if (!plan.smbConfLines.empty()) {
        text += QLatin1String("\n/etc/smb.conf\n");
    }
    text += changedLines(plan.smbConfLines);
    for (const review::SettingChange& setting : plan.afpSettings) {
        text += shown(setting.key + ": \"" + setting.before + "\" -> \"" + setting.after + "\"\n");
    }
    return text;
}

/// A scroll area that asks for the height of its contents up to a limit, and scrolls beyond it.
class ContentsArea : public QScrollArea {
  public:
    [[nodiscard]] QSize sizeHint() const override {
        return {widget()->width() + scrollBarRoom, std::min(widget()->height(), mostRowsHeight) + 2};
    }
};

class DetailsText : public QPlainTextEdit {
  public:
    using QPlainTextEdit::QPlainTextEdit;

    [[nodiscard]] QSize sizeHint() const override {
        return {QPlainTextEdit::sizeHint().width(), detailsHeight};
    }
};

/// The dialog. The caller adds the buttons.
class ReviewDialog : public QDialog {
  public:
    ReviewDialog(const review::Plan& plan, QWidget* parent, const std::optional<PlanQuestion>& question)
        : QDialog(parent), layout_(new QVBoxLayout(this)) {
        setObjectName("review");
        setWindowTitle(question ? shown(question->title) : localized("Review"));
        setMinimumWidth(dialogWidth);
        layout_->setContentsMargins(sideMargin, 20, sideMargin, 16);
        layout_->setSpacing(12);
        layout_->addWidget(scrolled(contentsOf(plan, question)), 1);
        addDetails(plan);
        buttons_ = new QDialogButtonBox;
        if (details_ != nullptr) {
            auto* toggle = buttons_->addButton(localizedTitle("Details"), QDialogButtonBox::ActionRole);
            toggle->setObjectName("reviewDetails");
            toggle->setAutoDefault(false);
            toggle->setCheckable(true);
            connect(toggle, &QPushButton::toggled, this, [this](bool isOn) {
                details_->setVisible(isOn);
                fit();
            });
        }
        layout_->addWidget(buttons_);
        fit();
    }

    QPushButton* addButton(const std::string& text, QDialogButtonBox::ButtonRole role, bool isDefault) {
        auto* button = buttons_->addButton(title(text), role);
        button->setAutoDefault(isDefault);
        button->setDefault(isDefault);
        connect(button, &QPushButton::clicked, this, [this, role] {
            done(role == QDialogButtonBox::AcceptRole ? QDialog::Accepted : QDialog::Rejected);
        });
        if (isDefault) {
            button->setFocus();
        }
        return button;
    }

    /// Makes it as high as its contents, as far as the screen has room.
    void fit() {
        layout_->activate();
        const int wide = isVisible() ? width() : dialogWidth;
        resize(fittedToScreen(*this, {wide, layout_->totalSizeHint().height()}));
    }

  private:
    QWidget* contentsOf(const review::Plan& plan, const std::optional<PlanQuestion>& question) {
        auto* contents = new QWidget;
        auto* rows = new QVBoxLayout(contents);
        rows->setContentsMargins(0, 0, 0, 0);
        rows->setSpacing(10);
        if (question) {
            rows->addWidget(heading(breakable(shown(question->text))));
        }
        if (!plan.failure.empty()) {
            rows->addWidget(paragraph(breakable(shown(plan.failure))));
        }
        if (!plan.blocks.empty()) {
            rows->addWidget(heading(localized("This cannot be done:")));
            rows->addWidget(sentenceList({plan.blocks.front().sentence}, "ul"));
        }
        if (!plan.warnings.empty()) {
            rows->addLayout(warningsOf(plan));
        }
        const std::vector<std::string> steps = review::sentencesOf(plan);
        if (!steps.empty()) {
            rows->addWidget(heading(localized("These are the steps:")));
            rows->addWidget(sentenceList(steps, "ol"));
        } else if (plan.failure.empty() && plan.blocks.empty()) {
            rows->addWidget(paragraph(localized("This changes nothing.")));
        }
        rows->addStretch(1);
        return contents;
    }

    QLayout* warningsOf(const review::Plan& plan) const {
        auto* row = new QHBoxLayout;
        row->setSpacing(14);
        auto* mark = new QLabel;
        mark->setPixmap(markIcon(Mark::Warning, QPalette::Window).pixmap(markSize));
        mark->setAccessibleName(localized("Warning"));
        row->addWidget(mark, 0, Qt::AlignTop);
        auto* text = new QVBoxLayout;
        text->addWidget(heading(localized("Before you go on:")));
        std::vector<std::string> sentences;
        for (const review::Remark& warning : plan.warnings) {
            sentences.push_back(warning.sentence);
        }
        text->addWidget(sentenceList(sentences, "ul"));
        text->addStretch(1);
        row->addLayout(text, 1);
        return row;
    }

    /// Makes an area as high as the contents up to a limit; beyond it they scroll.
    QScrollArea* scrolled(QWidget* contents) {
        auto* area = new ContentsArea;
        area->setAccessibleName(windowTitle());
        area->setFrameShape(QFrame::NoFrame);
        area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        // Lay out once at this width: wrapped labels in a resizable area ask for the height of a narrow one.
        constexpr int width = dialogWidth - 2 * sideMargin - scrollBarRoom;
        const int height = contents->layout()->heightForWidth(width);
        contents->setFixedSize(width, height);
        area->setWidget(contents);
        area->setMinimumHeight(std::min(height, leastHeight) + 2);
        return area;
    }

    void addDetails(const review::Plan& plan) {
        const QString text = detailsOf(plan);
        if (text.isEmpty()) {
            return;
        }
        details_ = new DetailsText(text);
        details_->setObjectName("reviewDetailsText");
        details_->setAccessibleName(localized("Details"));
        details_->setReadOnly(true);
        details_->setTabChangesFocus(true);
        details_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        details_->setLineWrapMode(QPlainTextEdit::NoWrap);
        details_->setMinimumHeight(leastHeight);
        details_->hide();
        layout_->addWidget(details_);
    }

    QVBoxLayout* layout_;
    QPlainTextEdit* details_ = nullptr; ///< null when there are none
    QDialogButtonBox* buttons_ = nullptr;
};

} // namespace

std::unique_ptr<QDialog> makePlanDialog(const review::Plan& plan, QWidget* parent,
                                        const std::optional<PlanQuestion>& question) {
    auto dialog = std::make_unique<ReviewDialog>(plan, parent, question);
    dialog->addButton(question ? question->goOn : NSLocalizedString("Go On"), QDialogButtonBox::AcceptRole,
                      false);
    dialog->addButton(question ? question->cancel : NSLocalizedString("Cancel"), QDialogButtonBox::RejectRole,
                      true);
    return dialog;
}

bool askAboutPlan(const review::Plan& plan, QWidget* parent, const std::optional<PlanQuestion>& question) {
    return makePlanDialog(plan, parent, question)->exec() == QDialog::Accepted;
}

void showPlan(const review::Plan& plan, QWidget* parent, const std::optional<PlanQuestion>& about) {
    ReviewDialog dialog(plan, parent, about);
    dialog.addButton(NSLocalizedString("Close"), QDialogButtonBox::RejectRole, true);
    dialog.exec();
}

} // namespace frontend
