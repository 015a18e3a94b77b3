export function FiguresScreen() { return null; }
