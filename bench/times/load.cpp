// Does nothing: what it takes is to be loaded.

int main() {
    return 0;
}
