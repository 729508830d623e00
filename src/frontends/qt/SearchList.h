#pragma once

#include "frontends/qt/TableRows.h"

#include <QAbstractListModel>
#include <QFrame>

#include <string>
#include <vector>

class QLineEdit;
class QListView;

namespace frontend {

/// The titles that contain every word of the search, in their own order.
class SearchedTitles : public QAbstractListModel {
  public:
    explicit SearchedTitles(std::vector<std::string> titles);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    void search(const std::string& text);

    [[nodiscard]] const TableRows& rows() const { return rows_; }

  private:
    std::vector<std::string> titles_;
    TableRows rows_;
};

/// The open list of a long menu: a field, and below it the items that match what is typed there. Return or a
/// click chooses an item, Escape or a click elsewhere changes nothing. Deletes itself when it is closed.
class SearchList : public QFrame {
    Q_OBJECT

  public:
    /// `selected` is the index of the selected title, -1 for none. The list becomes a child of `menu`, and
    /// opens below it, or above it when there is more room.
    SearchList(std::vector<std::string> titles, int selected, QWidget& menu);

    void open();

  Q_SIGNALS:
    /// The user has chosen the title with that index.
    void chosen(int title);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void search(const QString& text);
    void choose(const QModelIndex& index);

    QWidget& menu_;
    SearchedTitles titles_;
    int selected_;
    QLineEdit* field_;
    QListView* list_;
};

} // namespace frontend
