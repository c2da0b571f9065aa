// A top-level window of the program and its life.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "platform/screen/Screen.h"

class QAbstractButton;
class QPushButton;

namespace ui {

/// A form is made (Initialize: its constructor), loaded, shown, activated, resized and unloaded. The loaded
/// forms are the collection of open forms. Activation means that another form of the program was active
/// before: the end of a message box is no activation.
class Form : public QWidget {
 public:
  /// `name` is the form's class name, by which the collection knows it.
  explicit Form(const char* name);
  ~Form() override;

  std::string Name() const;
  /// Puts the form into the collection, runs OnLoad and takes the size as the smallest one; once.
  void LoadForm();
  bool Loaded() const { return loaded_; }
  /// Loads the form if need be, shows it without blocking and makes it the active form.
  void ShowForm();
  /// The same, and returns when the form has been unloaded. Other windows take no input meanwhile.
  void ShowModal();
  /// Ends the form: OnUnload, the end of its data, out of the collection. The object goes away later.
  void Unload();
  bool Minimised() const { return isMinimized(); }
  /// Whether keys may reach the form now: it is shown, and its opening or closing is not under way.
  virtual bool TakesKeys() const { return loaded_ && !unloading_ && !activating_ && isVisible(); }
  /// The window can then only be left by its own buttons: no close button, no Alt+F4.
  void RemoveCloseCommand();
  /// The pointer over this form.
  void SetPointer(screen::Pointer pointer);

  int MinWidth = 0;   ///< size at first load, in pixels, unless OnLoad has set another
  int MinHeight = 0;  ///< likewise

  /// Runs at the end of the form's life, in reverse order: data controls close themselves so.
  void AtUnload(std::function<void()> work);
  /// Enter clicks this button wherever the focus is; null for none.
  void SetDefault(QPushButton* button);
  /// Esc clicks this one.
  void SetCancel(QPushButton* button);
  QPushButton* Default() const { return default_; }
  QPushButton* Cancel() const { return cancel_; }
  /// Set once the mouse or a key has gone down on the Cancel button: rules for leaving a field then hold
  /// back, so that a bad field cannot keep anybody from it. True already while the press that takes the focus
  /// there is on its way.
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
/// The loaded form with this name; null if there is none.
Form* FindForm(const std::string& name);
/// The form that was active last; null if none is.
Form* ActiveForm();

/// Runs in each form's unload, before the form leaves the collection.
void InstallUnloadHook(std::function<void(Form& closing)> hook);
/// Runs when the last form has left the collection.
void InstallLastFormGone(std::function<void()> hook);

/// The largest size that a form may have on its screen, with its frame around it.
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

/// The one form of a class, if it has been made.
template <class F>
F* Existing() {
  return detail::SharedForm<F>();
}
/// The one form of a class, made at first use; its unload clears the reference, so that the next use makes a
/// fresh one.
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
