"""What ./bench sound is made of: a room to listen in, scores to play there, and ears."""
