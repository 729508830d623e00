#pragma once

#include "platform/appkit/Element.h"
#include "platform/foundation/NSBundle.h"

#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class Binding;

/// Collects what has to be redrawn and redraws it once a turn of the event loop, so that ten thousand changes
/// of a model cost one refresh. Owned by the presenter; outlives the bindings or is outlived harmlessly by
/// them.
class RefreshQueue : public QObject {
  public:
    ~RefreshQueue() override;

    void add(Binding* binding);
    void remove(Binding* binding);
    /// Redraws everything that is waiting, now, unless it is held.
    void flush();

    /// Redraws nothing until it is let go: an action that is under way has left its lists half filled.
    void hold(bool isHeld) { isHeld_ = isHeld; }

    [[nodiscard]] bool isHeld() const { return isHeld_; }

    /// Each event of the user has ended, and what it changed is redrawn.
    platform::Signal<> eventEnded;

    /// Whether one is under way.
    [[nodiscard]] bool isInEvent() const { return running_ > 0; }

    /// Runs one event of a user, then redraws what it changed.
    void runUserEvent(const std::function<void()>& event);

    /// The number of the user's event that runs, or ran last; one that comes up while another runs (a dialog
    /// takes the focus from a window) is a part of that one. 0 before the first.
    [[nodiscard]] unsigned userEvent() const { return userEvent_; }

  private:
    std::vector<Binding*> waiting_; ///< a null stands for a binding that has gone while it waited
    bool scheduled_ = false;
    bool isHeld_ = false;
    unsigned userEvent_ = 0;
    int running_ = 0; ///< user events under way, one within the other
};

/// Ties a widget or menu item to a signal of its model: when it is emitted, it is refreshed soon after. A
/// child of it, so that it goes with it.
class Binding : public QObject {
  public:
    /// `refresh` loads it from the model; it must not look like a user's edit. Called once at once.
    Binding(QObject* owner, RefreshQueue& queue, platform::Signal<>& signal, std::function<void()> refresh);
    ~Binding() override;

    /// Asks for a refresh, as a change of the model does.
    void markDirty();

  private:
    friend class RefreshQueue;

    RefreshQueue* queue_; ///< null when the queue has gone
    std::function<void()> refresh_;
    platform::Connection connection_;
    bool waiting_ = false;
};

/// queue.runUserEvent(event).
void dispatchUserEvent(RefreshQueue& queue, const std::function<void()>& event);

/// The text as Qt shows it; a byte that is not UTF-8 shows as a replacement character.
[[nodiscard]] inline QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

/// The text in the user's language, by its English.
[[nodiscard]] inline QString localized(const char* key) {
    return shown(NSLocalizedString(key));
}

/// The text as HTML that shows it verbatim, with its blanks and line breaks, where Qt guesses whether a text
/// is HTML (tool tips, message boxes): a name that looks like markup is shown as it is, and "&" is no entity.
/// Empty for an empty text.
[[nodiscard]] inline QString asItIs(const QString& text, const char* weight = "normal") {
    return text.isEmpty() ? QString()
                          : QString::fromLatin1("<p style='white-space: pre-wrap; font-weight: %1'>%2</p>")
                                .arg(QLatin1String(weight), text.toHtmlEscaped());
}

/// The text as a title in which "&" is an ampersand and underlines nothing.
[[nodiscard]] inline QString title(const std::string& text) {
    return shown(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// The title in the user's language, by its English.
[[nodiscard]] inline QString localizedTitle(const char* key) {
    return title(NSLocalizedString(key));
}
