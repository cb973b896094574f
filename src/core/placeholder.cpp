// Removed as soon as the first source of this folder stands.
