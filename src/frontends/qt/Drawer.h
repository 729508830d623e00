#pragma once

#include "frontends/qt/Binding.h"
#include "platform/appkit/NSWindow.h"

#include <QLayout>
#include <QVariantAnimation>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace frontend {

/// The widget for a drawer, at the window's right edge. Its contents scroll when the window is too low, and
/// its foot stays visible below them. They are made when it first opens, or soon after the window was first
/// painted. The window is widened for it as far as the screen has room. When the page beside it would become
/// too narrow, the drawer covers the page instead.
class Drawer : public QWidget {
    Q_OBJECT

  public:
    struct Parts {
        QWidget* contents;
        QWidget* foot; ///< null when there is none
    };

    using MakeParts = std::function<Parts()>;

    /// Takes ownership of both parts that `makeParts` returns. `width` is the drawer's width, and
    /// `leastBeside` that of the narrowest page that it is shown beside, in pixels. Without `animated` it
    /// opens and closes at once.
    Drawer(NSDrawer& drawer, MakeParts makeParts, int width, int leastBeside, bool animated,
           RefreshQueue& queue);

    /// The width that is visible while it slides out.
    [[nodiscard]] int shownWidth() const { return shownWidth_; }

    /// True when it is shown beside the page in a window of that width.
    [[nodiscard]] bool isBeside(int windowWidth) const { return windowWidth - width_ >= leastBeside_; }

    /// How much the window has been widened for it, in pixels.
    [[nodiscard]] int grown() const { return grown_; }

    /// How far the window was moved to the left for that; 0 when it has been moved since.
    [[nodiscard]] int shifted() const { return window()->x() == shiftedTo_ ? shifted_ : 0; }

    [[nodiscard]] NSDrawer& model() const { return drawer_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void build();
    void load();
    void grow(QWidget& window);
    void giveBack(QWidget& window);
    void slideTo(int width);
    void setShownWidth(int width);
    void shade();

    NSDrawer& drawer_;
    MakeParts makeParts_; ///< empty once they are made
    int width_;
    int leastBeside_;
    bool animated_;
    bool opened_ = false; ///< its present state, or the one that it slides to
    int shownWidth_ = 0;
    int grown_ = 0;
    int shifted_ = 0;
    int shiftedTo_ = 0;
    QWidget* holder_; ///< keeps the drawer's whole width while it slides
    QVariantAnimation slide_;
};

/// Lays out a window's page, which comes first, and its drawer.
class DrawerLayout : public QLayout {
    Q_OBJECT

  public:
    explicit DrawerLayout(QWidget* window) : QLayout(window) { setContentsMargins(0, 0, 0, 0); }

    ~DrawerLayout() override;

    void addItem(QLayoutItem* item) override;

    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }

    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    void setGeometry(const QRect& rect) override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;

  private:
    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

} // namespace frontend
