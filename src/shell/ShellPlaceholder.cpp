// The window layer grows here.
