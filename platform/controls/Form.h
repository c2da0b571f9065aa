// A top-level window of the program, from its load to its unload.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "platform/screen/Screen.h"

class QAbstractButton;
class QPushButton;

namespace ui {

/// The constructor makes a form (Initialize); then it is loaded, shown, activated, resized and unloaded. The
/// loaded forms are the collection of open forms. A form is activated if another form of the program was
/// active before; the end of a message box is not an activation.
class Form : public QWidget {
 public:
  /// `name` is the form's class name, by which the collection knows it.
  explicit Form(const char* name);
  ~Form() override;

  std::string Name() const;
  /// Adds the form to the collection, runs OnLoad and makes the size the smallest one; once.
  void LoadForm();
  bool Loaded() const { return loaded_; }
  /// Loads the form if necessary, shows it without blocking and makes it the active form.
  void ShowForm();
  /// The same, and returns after the form's unload. Other windows take no input meanwhile.
  void ShowModal();
  /// Ends the form: runs OnUnload, ends its data and removes it from the collection. The object is deleted
  /// later.
  void Unload();
  bool Minimized() const { return isMinimized(); }
  /// Whether the form can take keys now: it is shown, and it is neither opening nor closing.
  virtual bool TakesKeys() const { return loaded_ && !unloading_ && !activating_ && isVisible(); }
  /// Only the form's own buttons close the window then: it has no close button, and Alt+F4 does nothing.
  void RemoveCloseCommand();
  /// Sets the pointer over this form.
  void SetPointer(screen::Pointer pointer);

  int MinWidth = 0;   ///< size at first load, in pixels, unless OnLoad has set another
  int MinHeight = 0;  ///< likewise

  /// Runs the work at the form's unload, the latest first: data controls close themselves so.
  void AtUnload(std::function<void()> work);
  /// Enter clicks this button wherever the focus is; null for no button.
  void SetDefault(QPushButton* button);
  /// Esc clicks this one.
  void SetCancel(QPushButton* button);
  QPushButton* Default() const { return default_; }
  QPushButton* Cancel() const { return cancel_; }
  /// True after the mouse or a key has gone down on the Cancel button, and already while the mouse press
  /// there is taking the focus. Rules for leaving a field do nothing then, so that a bad value never blocks
  /// Cancel.
  bool CancelPressed();
  void ClearCancelPressed() { cancelPressed_ = false; }

 protected:
  virtual void OnLoad() {}
  virtual void OnActivate() {}
  virtual void OnResize() {}
  virtual void OnUnload() {}

  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BecomeActive();
  Form* NextInFront() const;

  bool loaded_ = false;
  bool unloading_ = false;
  bool activating_ = false;
  bool closable_ = true;
  bool cancelPressed_ = false;
  QPushButton* default_ = nullptr;
  QPushButton* cancel_ = nullptr;
  std::vector<std::function<void()>> atUnload_;
};

/// The loaded forms in the order of loading, hidden ones too.
const std::vector<Form*>& Forms();
/// The loaded form with this name, or null.
Form* FindForm(const std::string& name);
/// The form that was active last, or null.
Form* ActiveForm();

/// Runs in each form's unload, before the form leaves the collection.
void InstallUnloadHook(std::function<void(Form& closing)> hook);
/// Runs when the last form has left the collection.
void InstallLastFormGone(std::function<void()> hook);

/// The largest size of a form, such that it fits its screen together with its frame.
QSize RoomFor(const QWidget& form);
/// Centers a form in the work area of its screen, its left and top at least 1.
void CenterForm(QWidget& form);

namespace detail {
template <class F>
F*& SharedForm() {
  static F* form = nullptr;
  return form;
}
}  // namespace detail

/// The one form of a class, or null.
template <class F>
F* Existing() {
  return detail::SharedForm<F>();
}
/// The one form of a class, made at first use. Its unload clears the reference, so that the next use makes a
/// new one.
template <class F>
F& The() {
  F*& form = detail::SharedForm<F>();
  if (!form) {
    form = new F;
    form->AtUnload([] { detail::SharedForm<F>() = nullptr; });
  }
  return *form;
}

/// Runs `work` at each click.
void OnClick(QAbstractButton& button, std::function<void()> work);

}  // namespace ui
