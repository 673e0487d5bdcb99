#pragma once

#include <QObject>
#include <QQuickItem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "devices/qtquick/Animator.h"
#include "devices/qtquick/ScreenImages.h"
#include "platform/uikit/Controls.h"

namespace corvana::devices {

/// What bindings need of the screen that they belong to.
struct BindingTools {
  Animator& animator;
  ScreenImages& images;
  /// Duration of the animation that is being set up; zero outside of one.
  const platform::Duration& duration;
  /// Has the item's words said at once to those who do not see them.
  std::function<void(QQuickItem&)> announce;
};

/// Mirrors a view onto an item of the storyboard by properties of the same names. The item's own
/// values are the view's first ones; from then on the view decides. Main queue.
class ViewBinding {
 public:
  ViewBinding(QQuickItem& item, platform::UIView& view, const BindingTools& tools)
      : item_(item), view_(view), tools_(tools) {}
  virtual ~ViewBinding() = default;
  ViewBinding(const ViewBinding&) = delete;
  ViewBinding& operator=(const ViewBinding&) = delete;

  QQuickItem& item() const { return item_; }
  platform::UIView& view() const { return view_; }

  /// Takes the item's values over into the view, once.
  virtual void takeOver();
  /// Brings the view's changed property to the item.
  virtual void apply(std::string_view property);
  /// Tells the view where its item lies within `root`.
  void reportFrame(const QQuickItem& root);

 protected:
  QString text(const char* property) const { return item_.property(property).toString(); }
  platform::UIFont font() const;
  void setFont(const platform::UIFont& font);
  const BindingTools& tools() const { return tools_; }

 private:
  QQuickItem& item_;
  platform::UIView& view_;
  BindingTools tools_;
};

class LabelBinding final : public ViewBinding {
 public:
  LabelBinding(QQuickItem& item, platform::UILabel& label, const BindingTools& tools)
      : ViewBinding(item, label, tools), label_(label) {}
  void takeOver() override;
  void apply(std::string_view property) override;

 private:
  platform::UILabel& label_;
};

class ImageViewBinding final : public ViewBinding {
 public:
  ImageViewBinding(QQuickItem& item, platform::UIImageView& view, const BindingTools& tools)
      : ViewBinding(item, view, tools), imageView_(view) {}
  void apply(std::string_view property) override;
  /// Turns the picture over, from the image that is shown to the one that will be set.
  void flip(platform::Duration duration);

 private:
  platform::UIImageView& imageView_;
};

class ProgressViewBinding final : public ViewBinding {
 public:
  ProgressViewBinding(QQuickItem& item, platform::UIProgressView& view, const BindingTools& tools)
      : ViewBinding(item, view, tools), progressView_(view) {}
  void apply(std::string_view property) override;

 private:
  platform::UIProgressView& progressView_;
};

/// Mirrors a button, and carries clicks of the item back to it.
class ButtonBinding final : public QObject, public ViewBinding, public platform::ViewObserver {
  Q_OBJECT
 public:
  ButtonBinding(QQuickItem& item, platform::UIButton& button, const BindingTools& tools);
  ~ButtonBinding() override;
  void takeOver() override;
  void apply(std::string_view property) override;
  /// Hears of changes of the title's label, which is no part of the tree of views.
  void viewChanged(platform::UIView& view, const char* property) override;

 private slots:
  void touch();

 private:
  platform::UIButton& button_;
};

/// What is missing for the item to stand for a view of that kind, as "a property \"text\"";
/// empty when nothing is.
std::string lacksForView(const QQuickItem& item);
std::string lacksForLabel(const QQuickItem& item);
std::string lacksForImageView(const QQuickItem& item);
std::string lacksForButton(const QQuickItem& item);
std::string lacksForProgressView(const QQuickItem& item);

}  // namespace corvana::devices
