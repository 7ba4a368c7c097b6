int main()
{}
