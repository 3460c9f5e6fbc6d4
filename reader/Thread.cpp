#include "reader/Thread.h"

#include "reader/joinOrReport.h"

#include <boost/thread/thread_only.hpp>

#include <iostream>

Thread::Thread() : running_(false) {}

Thread::~Thread() {
    detach();
}

void Thread::preStop() {}

void Thread::postStop() {}

void Thread::start() {
    if (thread_) {
        std::cout << "Already started" << std::endl;
        return;
    }
    running_ = true;
    thread_ = std::make_unique<boost::thread>(&Thread::run, this);
}

void Thread::join() {
    if (running_) {
        preStop();
        running_ = false;
        if (!thread_) {
            return;
        }
        thread_->interrupt();
        postStop();
    }
    if (thread_) {
        boost::this_thread::disable_interruption const undisturbed;
        shm::joinOrReport([this] { thread_->join(); });
        detach();
    }
}

void Thread::detach() {
    if (thread_) {
        thread_->detach(); // no effect on a joined thread
        thread_.reset();
    }
}
