// Only carries the precompiled header of programs.
int main() {
  return 0;
}
