#pragma once
// How a controller link hands its answers to the GUI thread: the task runs on the thread of
// `context` at its next turn, as a queued call. Safe to call from any thread, so a transport
// reading on a worker thread of its own answers the control on the GUI thread. `context`
// must outlive the link that posts.

#include "vantrel/hosts/controller_link.h"

class QObject;

namespace vantrel::viewer {

hosts::PostToHost PostToThreadOf(QObject* context);

}  // namespace vantrel::viewer
