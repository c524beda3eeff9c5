# Cross build for 64-bit Arm Linux with Debian's g++-aarch64-linux-gnu.
# Test executables run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Once Debian's arm64 libc is installed (setup.sh adds it for the aarch64 JVM),
# the host's ld.so.cache lists its libraries, and the cross sysroot's loader
# would mix the two glibc builds: threads then hang in pthread_create. Run
# against the multiarch root whenever it is there, the sysroot otherwise.
if(EXISTS /lib/ld-linux-aarch64.so.1)
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /)
else()
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu)
endif()

# jni.h and the Linux jni_md.h of the host JDK hold for aarch64 as well (jint
# is int, jlong is long, the rest is visibility), so the binding's floor (and
# the fake JNI environment of its tests) takes them from there; the sysroot
# has none. The core is built without them.
foreach(jdk /usr/lib/jvm/default-java /usr/lib/jvm/java-17-openjdk-amd64)
  if(NOT JAVA_INCLUDE_PATH AND EXISTS ${jdk}/include/jni.h)
    set(JAVA_INCLUDE_PATH ${jdk}/include CACHE PATH "Directory of jni.h")
    set(JAVA_INCLUDE_PATH2 ${jdk}/include/linux CACHE PATH "Directory of jni_md.h")
    set(JAVA_AWT_INCLUDE_PATH ${jdk}/include CACHE PATH "Directory of jawt.h")
  endif()
endforeach()
