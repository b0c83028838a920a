#include <thread>

#include <gtest/gtest.h>
#include <window_system.h>

namespace {

ATOM Register(const char* name, UINT size = sizeof(WNDCLASSEXA)) {
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = size;
  windowClass.lpszClassName = name;
  return RegisterClassExA(&windowClass);
}

class AWindow : public testing::Test {
 protected:
  void SetUp() override {
    descriptor_.nSize = sizeof(descriptor_);
    descriptor_.nVersion = 1;
    descriptor_.cColorBits = 32;
    ASSERT_NE(Register("Room"), 0);
    window_ = NewWindow("Room");
    deviceContext_ = GetDC(window_);
  }

  void TearDown() override {
    wglMakeCurrent(nullptr, nullptr);
    wglDeleteContext(context_);
    DestroyWindow(window_);
    EXPECT_TRUE(UnregisterClassA("Room", nullptr));
  }

  static HWND NewWindow(const char* className) {
    return CreateWindowExA(0, className, "", 0, 0, 0, 50, 50, nullptr, nullptr, nullptr, nullptr);
  }

  void MakeContextCurrent() {
    const int format = ChoosePixelFormat(deviceContext_, &descriptor_);
    ASSERT_TRUE(SetPixelFormat(deviceContext_, format, &descriptor_));
    context_ = wglCreateContext(deviceContext_);
    ASSERT_TRUE(wglMakeCurrent(deviceContext_, context_));
  }

  PIXELFORMATDESCRIPTOR descriptor_{};
  HWND window_ = nullptr;
  HDC deviceContext_ = nullptr;
  HGLRC context_ = nullptr;
};

TEST_F(AWindow, TakesItsHandlesWithIt) {
  MakeContextCurrent();
  std::thread([this] { EXPECT_FALSE(DestroyWindow(window_)) << "made on another thread"; }).join();
  EXPECT_EQ(ReleaseDC(nullptr, deviceContext_), 0);
  EXPECT_TRUE(DestroyWindow(window_));
  EXPECT_FALSE(DestroyWindow(window_));
  EXPECT_EQ(GetDC(window_), nullptr);
  EXPECT_EQ(ReleaseDC(window_, deviceContext_), 0);
  EXPECT_EQ(wglCreateContext(deviceContext_), nullptr);
  EXPECT_FALSE(wglMakeCurrent(deviceContext_, context_));
}

TEST_F(AWindow, IsDrawnToAndLeftWithoutAContextByAFailure) {
  EXPECT_EQ(wglGetProcAddress("glActiveTexture"), nullptr) << "no context is current";
  MakeContextCurrent();
  EXPECT_NE(wglGetProcAddress("glActiveTexture"), nullptr);
  glClearColor(0.0F, 1.0F, 0.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  GLubyte pixel[4] = {};
  glReadPixels(49, 49, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
  EXPECT_EQ(pixel[1], 255);
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});

  EXPECT_FALSE(wglMakeCurrent(nullptr, context_));
  EXPECT_EQ(wglGetCurrentContext(), nullptr);
  EXPECT_FALSE(wglMakeCurrent(nullptr, nullptr)) << "there is none to release";
}

TEST_F(AWindow, LosesAContextThatIsDeletedWhileCurrent) {
  MakeContextCurrent();
  std::thread([this] { EXPECT_FALSE(wglDeleteContext(context_)) << "current elsewhere"; }).join();
  EXPECT_TRUE(wglDeleteContext(wglCreateContext(deviceContext_)));
  EXPECT_EQ(wglGetCurrentContext(), context_);
  EXPECT_TRUE(wglDeleteContext(context_));
  EXPECT_EQ(wglGetCurrentDC(), nullptr);
  EXPECT_FALSE(wglDeleteContext(context_));
  EXPECT_FALSE(wglMakeCurrent(deviceContext_, context_));
}

}  // namespace
