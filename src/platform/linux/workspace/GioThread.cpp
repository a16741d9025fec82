#include "platform/linux/workspace/GioThread.h"

#include <utility>

namespace {

using Task = std::function<void()>;

gboolean runOnce(gpointer task)
{
    (*static_cast<Task*>(task))();
    return G_SOURCE_REMOVE;
}

void destroy(gpointer task)
{
    delete static_cast<Task*>(task);
}

} // namespace

GioThread::GioThread()
    : m_context(g_main_context_new()),
      m_loop(g_main_loop_new(m_context.get(), FALSE)),
      m_thread([this] {
          g_main_context_push_thread_default(m_context.get());
          g_main_loop_run(m_loop.get());
          g_main_context_pop_thread_default(m_context.get());
      })
{
}

GioThread::~GioThread()
{
    post([this] { g_main_loop_quit(m_loop.get()); });
    m_thread.join();
}

void GioThread::post(std::function<void()> task)
{
    // Not g_main_context_invoke(), which runs the task right here while the thread still starts.
    auto* const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source, runOnce, std::make_unique<Task>(std::move(task)).release(), destroy);
    g_source_attach(source, m_context.get());
    g_source_unref(source); // the context has it now
}
