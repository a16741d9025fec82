#pragma once

#include <gio/gio.h>

#include <memory>

/// Owners of what GLib and GIO hand out.
struct GioDeleter {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
    void operator()(GSource* source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
    void operator()(char* text) const { g_free(text); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    template <typename Object>
    void operator()(Object* object) const
    {
        g_object_unref(object);
    }
};

/// A source ends with its handle.
template <typename Type>
using GioHandle = std::unique_ptr<Type, GioDeleter>;
