#include "platform/linux/video/CpuDrawing.h"

std::size_t CpuDrawing::stride(int width)
{
    constexpr std::size_t alignment = 64;
    const auto bytes = static_cast<std::size_t>(width) * bytesPerPixel;
    return (bytes + alignment - 1) / alignment * alignment;
}

RenderContext CpuDrawing::createContext(mpv_handle& core)
{
    char api[] = MPV_RENDER_API_TYPE_SW;
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_API_TYPE, api},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context* context = nullptr;
    mpv_render_context_create(&context, &core, parameters);
    return RenderContext(context);
}

void CpuDrawing::draw(
    mpv_render_context& context, const QSize& size, std::size_t stride, std::uint8_t* pixels)
{
    int dimensions[] = {size.width(), size.height()};
    char format[] = "bgr0";
    int doNotBlock = 0;
    mpv_render_param parameters[] = {
        {MPV_RENDER_PARAM_SW_SIZE, dimensions},
        {MPV_RENDER_PARAM_SW_FORMAT, format},
        {MPV_RENDER_PARAM_SW_STRIDE, &stride},
        {MPV_RENDER_PARAM_SW_POINTER, pixels},
        {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &doNotBlock},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context_render(&context, parameters);
}
