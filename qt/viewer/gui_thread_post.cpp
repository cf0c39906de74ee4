#include "gui_thread_post.h"

#include <QMetaObject>
#include <QObject>
#include <functional>
#include <utility>

namespace vantrel::viewer {

hosts::PostToHost PostToThreadOf(QObject* context) {
  return [context](std::function<void()> task) {
    QMetaObject::invokeMethod(context, std::move(task), Qt::QueuedConnection);
  };
}

}  // namespace vantrel::viewer
