// How forms are laid out: prompts beside their fields, groups, and the row of buttons.
#pragma once

#include <QGridLayout>
#include <initializer_list>
#include <string>

class QGroupBox;
class QHBoxLayout;
class QLabel;
class QPushButton;
class QWidget;

namespace ui {

/// A prompt beside or above a field, whose access key and accessible name go to the field.
QLabel* Prompt(const std::string& text, QWidget& field);
/// Shows a text on a control of no further use: headings, explanations.
QLabel* Caption(const std::string& text);

/// Prompts in one column, fields in the next: the shape of most detail forms.
class FieldRows : public QGridLayout {
 public:
  FieldRows();
  /// Adds a row; more than one field stand side by side. A field of the row that should not stretch keeps its
  /// own width.
  void Row(const std::string& prompt, std::initializer_list<QWidget*> fields);
  /// A field over the whole width.
  void Whole(QWidget& field);
};

QGroupBox* Group(const std::string& title, QLayout* content);
/// The buttons at the right end of a row, in the order given.
QHBoxLayout* ButtonRow(std::initializer_list<QWidget*> buttons);
/// The width that any date with its time takes.
int DateTimeWidth(const QWidget& field);
/// Width for so many characters of the font, digits or letters.
void SetWidth(QWidget& field, int characters);
/// The order of the Tab key.
void TabOrder(std::initializer_list<QWidget*> fields);

/// Widths that are the same in all windows, in characters.
inline constexpr int kDateWidth = 12;
inline constexpr int kNumberWidth = 10;
inline constexpr int kMoneyWidth = 14;
inline constexpr int kCodeWidth = 20;
inline constexpr int kTextWidth = 40;

}  // namespace ui
