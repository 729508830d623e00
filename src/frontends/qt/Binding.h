#pragma once

#include "platform/appkit/Element.h"
#include "platform/foundation/NSBundle.h"

#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace frontend {

class Binding;

/// Collects what has to be redrawn and redraws it once per turn of the event loop, so that ten thousand
/// changes of a model cost one refresh. Owned by the presenter. Bindings may outlive it.
class RefreshQueue : public QObject {
  public:
    ~RefreshQueue() override;

    void add(Binding* binding);
    void remove(Binding* binding);
    /// Redraws everything that is waiting, unless the queue is held.
    void flush();

    /// Redraws nothing while held, because an action in progress may have left the lists half filled.
    void hold(bool isHeld) { isHeld_ = isHeld; }

    [[nodiscard]] bool isHeld() const { return isHeld_; }

    /// Emitted after each user event, when its changes are redrawn.
    platform::Signal<> eventEnded;

    /// True during a user event.
    [[nodiscard]] bool isInEvent() const { return running_ > 0; }

    /// Runs one user event, then redraws what it changed.
    void runUserEvent(const std::function<void()>& event);

    /// The number of the current or last user event; 0 before the first. An event that begins during another
    /// one (a dialog takes the focus from a window) is part of it.
    [[nodiscard]] unsigned userEvent() const { return userEvent_; }

  private:
    std::vector<Binding*> waiting_; ///< null for a binding that was destroyed while it waited
    bool scheduled_ = false;
    bool isHeld_ = false;
    unsigned userEvent_ = 0;
    int running_ = 0; ///< how many user events are nested at the moment
};

/// Connects a widget or menu item to a signal of its model, and refreshes it soon after each emission. The
/// binding is a child of the widget or menu item.
class Binding : public QObject {
  public:
    /// `refresh` loads the owner from the model, and must not have the effect of a user's edit. It is called
    /// once immediately.
    Binding(QObject* owner, RefreshQueue& queue, platform::Signal<>& signal, std::function<void()> refresh);
    ~Binding() override;

    /// Requests a refresh, as a change of the model does.
    void markDirty();

  private:
    friend class RefreshQueue;

    RefreshQueue* queue_; ///< null once the queue is destroyed
    std::function<void()> refresh_;
    platform::Connection connection_;
    bool waiting_ = false;
};

/// Makes what is not visible yet, after the window that is about to be shown has been painted. Does nothing
/// once `owner` is destroyed.
void afterFirstPaint(QObject* owner, std::function<void()> work);

/// Returns the text for Qt. Bytes that are not UTF-8 become replacement characters.
[[nodiscard]] inline QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

/// Returns the text in the user's language; the key is the English text.
[[nodiscard]] inline QString localized(const char* key) {
    return shown(NSLocalizedString(key));
}

/// Returns the text with places in its very long words where Qt may break the line.
[[nodiscard]] QString breakable(const QString& text);

/// Returns HTML that shows the text verbatim, with its blanks and line breaks; empty for an empty text. For
/// places where Qt guesses whether a text is HTML (tool tips, message boxes), so that a name that looks like
/// markup is shown unchanged.
[[nodiscard]] inline QString asItIs(const QString& text, const char* weight = "normal") {
    return text.isEmpty() ? QString()
                          : QString::fromLatin1("<p style='white-space: pre-wrap; font-weight: %1'>%2</p>")
                                .arg(QLatin1String(weight), breakable(text).toHtmlEscaped());
}

/// Returns the text as a title in which "&" shows as an ampersand and marks no mnemonic.
[[nodiscard]] inline QString title(const std::string& text) {
    return shown(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// Returns the title in the user's language; the key is the English text.
[[nodiscard]] inline QString localizedTitle(const char* key) {
    return title(NSLocalizedString(key));
}

} // namespace frontend
