#include "frontends/qt/WindowHistory.h"

#include "frontends/qt/Binding.h"
#include "frontends/qt/DialogParts.h"
#include "frontends/qt/ReviewDialog.h"
#include "frontends/qt/ScreenRoom.h"
#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSString.h"
#include "review/TextDifference.h"

#include <QDateTime>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace frontend {

namespace {

constexpr int dialogWidth = 720;
constexpr int dialogHeight = 480;
constexpr int numberRole = Qt::UserRole;

void showProblem(const std::string& title, const std::string& text) {
    NSRunAlertPanel(title, "%@", NSLocalizedString("OK"), std::nullopt, std::nullopt, text);
}

QString outcomeText(const review::HistoryEntry& entry) {
    if (entry.isDamaged) {
        return localized("damaged");
    }
    if (entry.isUndone) {
        return localized("taken back");
    }
    return hasGoneWrong(entry) ? localized("failed") : localized("done");
}

std::string_view textOf(const std::optional<std::string>& bytes) {
    return bytes ? std::string_view(*bytes) : std::string_view();
}

/// Returns the runs with their outputs, and the removed and added lines of smb.conf.
QString detailsOf(const review::HistoryEntry& entry) {
    QString text;
    for (const review::PastRun& run : entry.runs) {
        text += shown(review::runText(run.tool, run.arguments) + "\n");
        if (!run.output.empty()) {
            text += QLatin1String("    ") + shown(run.output).trimmed() + QLatin1Char('\n');
        }
    }
    for (const review::FileChange& file : entry.files) {
        text += QLatin1Char('\n') + shown(file.path) + QLatin1Char('\n');
        text += changedLines(
            review::lineChanges(review::linesOf(textOf(file.before)), review::linesOf(textOf(file.after))));
    }
    for (const review::FolderStep& folder : entry.folders) {
        text += shown(folder.path) +
                QString::asprintf(": %04o -> %04o, ", folder.before.mode, folder.after.mode) +
                shown(folder.before.accounts + " -> " + folder.after.accounts) + QLatin1Char('\n');
    }
    return text;
}

/// Shows the entries, the newest first, and the details of the selected one.
class HistoryDialog : public QDialog {
  public:
    HistoryDialog(const review::History& history, WindowHistory& owner, QWidget* parent)
        : QDialog(parent), history_(history) {
        setObjectName("history");
        setWindowTitle(localized("History"));
        resize(fittedToScreen(*this, QSize(dialogWidth, dialogHeight)));
        list_ = makeList("historyList", windowTitle(),
                         {localized("When"), localized("What"), localized("Who"), localized("Outcome")}, 1);
        details_ = makeDetails("historyDetails");
        details_->setLineWrapMode(QPlainTextEdit::NoWrap);
        details_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        details_->setPlaceholderText(localized("Select a change to see what it did."));
        auto* buttons = makeButtons(*this);
        takeBack_ = addButton(*buttons, localizedTitle("Take Back…"));
        connect(takeBack_, &QPushButton::clicked, this, [this, &owner] {
            if (const auto* item = list_->currentItem()) {
                const auto number = item->data(0, numberRole).toLongLong();
                const std::size_t before = entries_.size();
                owner.takeBack(number, this);
                fill();
                if (entries_.size() == before) {
                    select(number); // nothing new to look at
                }
            }
        });
        connect(list_, &QTreeWidget::currentItemChanged, this, [this] { showCurrent(); });
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(list_, 2);
        layout->addWidget(details_, 1);
        layout->addWidget(buttons);
        fill();
    }

  private:
    void fill() {
        list_->clear();
        auto entries = history_.entries();
        if (!entries.isOk()) {
            details_->setPlainText(shown(entries.status().text()));
        }
        entries_ = std::move(entries).valueOr({});
        for (const review::HistoryEntry& entry : entries_) {
            const QString when =
                QLocale().toString(QDateTime::fromSecsSinceEpoch(entry.time), QLocale::ShortFormat);
            auto* item =
                new QTreeWidgetItem(list_, {when, shown(entry.title), shown(entry.user), outcomeText(entry)});
            item->setData(0, numberRole, QVariant::fromValue<qlonglong>(entry.number));
        }
        list_->resizeColumnToContents(0);
        list_->resizeColumnToContents(2);
        list_->resizeColumnToContents(3);
        list_->setCurrentItem(list_->topLevelItem(0));
        showCurrent();
    }

    void select(qlonglong number) {
        for (int row = 0; row < list_->topLevelItemCount(); ++row) {
            if (list_->topLevelItem(row)->data(0, numberRole).toLongLong() == number) {
                list_->setCurrentItem(list_->topLevelItem(row));
            }
        }
    }

    void showCurrent() {
        const auto* item = list_->currentItem();
        const auto index = item == nullptr ? -1 : list_->indexOfTopLevelItem(list_->currentItem());
        const review::HistoryEntry* entry = index < 0 ? nullptr : &entries_[static_cast<std::size_t>(index)];
        takeBack_->setEnabled(entry != nullptr && !entry->isUndone && entry->canComeBack());
        if (entry != nullptr) {
            details_->setPlainText(detailsOf(*entry));
        }
    }

    const review::History& history_;
    std::vector<review::HistoryEntry> entries_; ///< in the order of the list
    QTreeWidget* list_ = nullptr;
    QPlainTextEdit* details_ = nullptr;
    QPushButton* takeBack_ = nullptr;
};

} // namespace

WindowHistory::WindowHistory(const review::History& history, review::Reviewer& reviewer, UnsavedEdits& edits,
                             QMainWindow& window, QMenu& menu, RefreshQueue& queue)
    : QObject(&window), history_(history), reviewer_(reviewer), edits_(edits), window_(window),
      queue_(queue) {
    QAction* first = menu.actions().isEmpty() ? nullptr : menu.actions().constFirst();
    undo_ = new QAction(localized("Undo"), this);
    undo_->setObjectName("undo");
    undo_->setShortcut(QKeySequence::Undo); // a field that has the focus handles this key itself
    connect(undo_, &QAction::triggered, this, [this] { takeBack(std::nullopt, &window_); });
    auto* all = new QAction(localized("History…"), this);
    all->setObjectName("showHistory");
    connect(all, &QAction::triggered, this, [this] { showHistory(); });
    menu.insertAction(first, undo_);
    menu.insertAction(first, all);
    menu.insertSeparator(first);
    connect(&menu, &QMenu::aboutToShow, this, [this] { nameUndo(); });
    // Keep it enabled: what its shortcut would do is determined when it is pressed.
    connect(&menu, &QMenu::aboutToHide, this, [this] { undo_->setEnabled(true); });
}

void WindowHistory::nameUndo() {
    const std::string next = history_.titleOfNextUndo();
    undo_->setEnabled(!next.empty());
    undo_->setText(next.empty() ? localized("Undo")
                                : title(stringWithFormat(NSLocalizedString("Undo “%@”"), next)));
}

void WindowHistory::takeBack(std::optional<std::int64_t> number, QWidget* parent) {
    queue_.runUserEvent([&] {
        const auto undo = history_.describeUndo(number, review::ChangedFile::KeepsOtherSections);
        if (!undo.isOk() || !undo->refusal.empty()) {
            showProblem(NSLocalizedString("Not Possible"),
                        undo.isOk() ? undo->refusal : undo.status().text());
            return;
        }
        review::Plan plan = reviewer_.planUndo(*undo);
        if (!plan.blocks.empty()) {
            showProblem(NSLocalizedString("Not Possible"), plan.blocks.front().sentence);
            return;
        }
        addWarnings(*undo, &plan);
        const PlanQuestion question{NSLocalizedString("Undo"), undo->question, NSLocalizedString("Yes"),
                                    NSLocalizedString("No")};
        if (!askAboutPlan(plan, parent, question)) {
            return;
        }
        if (allowed_) {
            allowed_(plan.runs.size());
        }
        const auto putBack = edits_.keep(UnsavedEdits::Pages::All);
        const platform::Status status = history_.undo(*undo);
        reviewer_.rereadEverything();
        if (status.isOk()) {
            edits_.forget(UnsavedEdits::Pages::All);
        } else {
            putBack();
            showProblem(NSLocalizedString("Not Taken Back"), status.text());
        }
    });
}

void WindowHistory::addWarnings(const review::UndoPlan& undo, review::Plan* plan) const {
    for (const std::string& loss : undo.losses) {
        plan->warnings.push_back({"lost", loss});
    }
    if (const std::string loss = edits_.loss(UnsavedEdits::Pages::All); !loss.empty()) {
        plan->warnings.push_back({"unsaved", loss});
    }
}

void WindowHistory::showHistory() {
    HistoryDialog(history_, *this, &window_).exec();
}

} // namespace frontend
