// SPDX-License-Identifier: MIT
// Events of SDL to the viewer, pixels of the viewer to SDL. Nothing runs between events but a look
// at the file four times a second, and nothing is drawn unless the view has changed.
#include "svgview/Window.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

namespace {

constexpr uint32_t kLookInterval = 250; // milliseconds between looks at the file
constexpr int kQuiet = 50;              // milliseconds without an event before the window goes

class Window {
public:
    explicit Window(Viewer& viewer) : viewer_(viewer) {}
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    std::string open();
    std::string run();

private:
    void handle(const SDL_Event& event);
    void handleKey(SDL_Keycode key);
    void handleButton(const SDL_MouseButtonEvent& button);
    void handleWindow(const SDL_WindowEvent& event);
    bool show();

    Viewer& viewer_;
    SDL_Window* window_ = nullptr;
    std::string title_;
    bool exposed_ = true;
    bool closed_ = false;
};

// Copies the pixmap onto the surface, which may have another format.
bool copy(const MMPixmap& pixmap, SDL_Surface* to, int x, int y)
{
    SDL_Surface* from = SDL_CreateRGBSurfaceWithFormatFrom(
        pixmap.pixels, pixmap.width, pixmap.height, 32, static_cast<int>(pixmap.rowBytes),
        SDL_PIXELFORMAT_RGB888);
    if (!from) return false;
    SDL_Rect place = {x, y, pixmap.width, pixmap.height};
    const bool good = SDL_BlitSurface(from, nullptr, to, &place) == 0;
    SDL_FreeSurface(from);
    return good;
}

std::string Window::open()
{
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return std::string("no display: ") + SDL_GetError();
    // The pixels are made by the processor: where a window can take them as they are, the way
    // through a graphics driver is a detour.
    if (SDL_GetCurrentVideoDriver() == std::string("x11"))
        SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    title_ = viewer_.title();
    window_ = SDL_CreateWindow(title_.c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                               viewer_.width(), viewer_.height(), SDL_WINDOW_RESIZABLE);
    return window_ ? "" : std::string("no window: ") + SDL_GetError();
}

Window::~Window()
{
    if (window_) {
        // SDL wakes its own wait through a connection of its own to the X server. What is under way
        // there has to arrive while there is a window, or the server complains and ends us.
        SDL_HideWindow(window_);
        SDL_Event event;
        while (SDL_WaitEventTimeout(&event, kQuiet)) {
        }
        SDL_DestroyWindow(window_);
    }
    SDL_Quit();
}

std::string Window::run()
{
    uint32_t lastLook = SDL_GetTicks();
    while (!closed_) {
        const bool drawn = viewer_.draw();
        if ((drawn || exposed_) && !show())
            return std::string("cannot draw into the window: ") + SDL_GetError();
        if (viewer_.title() != title_) {
            title_ = viewer_.title();
            SDL_SetWindowTitle(window_, title_.c_str());
        }
        // All that has happened goes into one frame.
        SDL_Event event;
        for (int more = SDL_WaitEventTimeout(&event, kLookInterval); more;
             more = SDL_PollEvent(&event))
            handle(event);
        if (SDL_GetTicks() - lastLook >= kLookInterval) {
            viewer_.reloadIfChanged();
            lastLook = SDL_GetTicks();
        }
    }
    return "";
}

bool Window::show()
{
    SDL_Surface* surface = SDL_GetWindowSurface(window_);
    if (!surface || !copy(viewer_.picture(), surface, 0, 0)) return false;
    const MMPixmap& readout = viewer_.readout();
    if (readout.width > 0 && !copy(readout, surface, 0, surface->h - readout.height)) return false;
    exposed_ = false;
    return SDL_UpdateWindowSurface(window_) == 0;
}

void Window::handle(const SDL_Event& event)
{
    switch (event.type) {
    case SDL_QUIT:
        closed_ = true;
        break;
    case SDL_KEYDOWN:
        handleKey(event.key.keysym.sym);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        handleButton(event.button);
        break;
    case SDL_MOUSEMOTION:
        viewer_.moveTo(event.motion.x, event.motion.y);
        break;
    case SDL_MOUSEWHEEL:
        viewer_.zoom(event.wheel.preciseY, event.wheel.mouseX, event.wheel.mouseY);
        break;
    case SDL_WINDOWEVENT:
        handleWindow(event.window);
        break;
    default:
        break;
    }
}

void Window::handleKey(SDL_Keycode key)
{
    const int middleX = viewer_.width() / 2;
    const int middleY = viewer_.height() / 2;
    const int stepX = viewer_.width() / 8;
    const int stepY = viewer_.height() / 8;
    switch (key) {
    case SDLK_PLUS:
    case SDLK_EQUALS: // plus without shift on many keyboards
    case SDLK_KP_PLUS:
        viewer_.zoom(1, middleX, middleY);
        break;
    case SDLK_MINUS:
    case SDLK_KP_MINUS:
        viewer_.zoom(-1, middleX, middleY);
        break;
    case SDLK_LEFT:
        viewer_.pan(stepX, 0);
        break;
    case SDLK_RIGHT:
        viewer_.pan(-stepX, 0);
        break;
    case SDLK_UP:
        viewer_.pan(0, stepY);
        break;
    case SDLK_DOWN:
        viewer_.pan(0, -stepY);
        break;
    case SDLK_0:
    case SDLK_KP_0:
        viewer_.fit();
        break;
    case SDLK_F5:
        viewer_.reload();
        break;
    case SDLK_q:
    case SDLK_ESCAPE:
        closed_ = true;
        break;
    default:
        break;
    }
}

void Window::handleButton(const SDL_MouseButtonEvent& button)
{
    if (button.button != SDL_BUTTON_LEFT) return;
    if (button.state == SDL_PRESSED) {
        viewer_.press(button.x, button.y);
    } else {
        viewer_.moveTo(button.x, button.y);
        viewer_.release();
    }
}

void Window::handleWindow(const SDL_WindowEvent& event)
{
    if (event.event == SDL_WINDOWEVENT_SIZE_CHANGED) viewer_.resize(event.data1, event.data2);
    // A new size needs all pixels again even where the view is as it was.
    if (event.event == SDL_WINDOWEVENT_SIZE_CHANGED || event.event == SDL_WINDOWEVENT_EXPOSED)
        exposed_ = true;
}

} // namespace

std::string showWindow(Viewer& viewer)
{
    Window window(viewer);
    const std::string problem = window.open();
    return problem.empty() ? window.run() : problem;
}
