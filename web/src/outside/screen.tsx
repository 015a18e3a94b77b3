export function OutsideScreen() { return null; }
