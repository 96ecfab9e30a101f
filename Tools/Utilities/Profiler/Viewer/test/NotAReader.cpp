// A loadable library without the reader exports, which the viewer must refuse.
extern "C" __attribute__((visibility("default"))) int kvtNotAReader() {
  return 0;
}
