/// The title of a part of the inspector.
Words {
    role: Theme.strong
    color: Theme.textSecondary
}
