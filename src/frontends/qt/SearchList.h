#pragma once

#include "frontends/qt/TableRows.h"

#include <QAbstractListModel>
#include <QFrame>

#include <string>
#include <vector>

class QLineEdit;
class QListView;

/// Titles in their order, without those in which a word that is searched for does not occur.
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

/// A long menu as it is opened: a field, and below it the items that hold what is typed there. Return or a
/// click takes an item, Escape or a click elsewhere leaves everything as it is. Deletes itself when it is
/// closed.
class SearchList : public QFrame {
    Q_OBJECT

  public:
    /// `selected` is the number of the selected title, -1 for none. It opens below `menu`, whose child it
    /// becomes, or above where there is more room.
    SearchList(std::vector<std::string> titles, int selected, QWidget& menu);

    void open();

  Q_SIGNALS:
    /// The user has taken the title of that number.
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
